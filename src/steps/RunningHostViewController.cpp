// SPDX-License-Identifier: Apache-2.0

#include "steps/RunningHostViewController.h"

#include <algorithm>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"

namespace {

bool counts(const std::string& applicationName, std::string_view searchString) {
  if (searchString.empty()) return false;
  const std::size_t found = applicationName.find(searchString);
  if (found == std::string::npos) return false;
  if (searchString == "Photoshop") return found == 0;
  return applicationName.find("Installer") == std::string::npos;
}

bool isAmong(const std::vector<std::string>& applications, std::string_view searchString) {
  return std::ranges::any_of(applications, [&](const std::string& name) { return counts(name, searchString); });
}

}  // namespace

void RunningHostViewController::didEnterWithModel(std::shared_ptr<SetupStepModel> /*model*/,
                                                  std::shared_ptr<View> withView,
                                                  SetupMainController* withMainController, std::int32_t direction) {
  PageController::didEnterWithModel(nullptr, std::move(withView), withMainController, direction);
  // Before the check, or an application that ends right after it would be waited for in vain.
  AddKillNotify();
  hostsRunning_ = checkForRunningHosts();
  withMainController->willChangeValueForKey("enableForward");
  model_->setHostIsRunning(hostsRunning_);
  withMainController->didChangeValueForKey("enableForward");
  if (hostsRunning_) return;
  RemoveKillNotify();
  withMainController->nextView(this);
}

void RunningHostViewController::didProceed(std::int32_t delta) {
  RemoveKillNotify();
  PageController::didProceed(delta);
}

std::string RunningHostViewController::hostAppSearchString(const HostModel& host) {
  if (dynamic_cast<const UnknownHostModel*>(&host) != nullptr) return "Photoshop";
  if (dynamic_cast<const PhotoshopHostModel*>(&host) != nullptr) {
    return host.hostName().find("Elements") != std::string::npos ? "Elements" : "Photoshop";
  }
  if (dynamic_cast<const LightRoomHostModel*>(&host) != nullptr) return "Lightroom";
  return "Aperture";
}

bool RunningHostViewController::isHostRunning(std::string_view searchString) const {
  return isAmong(platform_.workspace.launchedApplications(), searchString);
}

bool RunningHostViewController::checkForRunningHosts() {
  const auto applications = platform_.workspace.launchedApplications();
  std::string name;
  hostsRunning_ = false;
  for (const auto& host : mainController().selectedHosts()) {
    if (hostsRunning_) break;
    name = hostAppSearchString(*host);
    hostsRunning_ = isAmong(applications, name);
  }
  if (!hostsRunning_) {
    const std::string payload = payloadAmong(applications);
    hostsRunning_ = !payload.empty();
    if (hostsRunning_) name = payload;
  }
  // Once: the window would show each name in turn.
  if (!name.empty()) model_->setHostName(name);
  return hostsRunning_;
}

std::string RunningHostViewController::payloadAmong(const std::vector<std::string>& applications) const {
  const std::string folder = joinPath({platform_.bundles.mainBundle().resourcePath(), "files", "HD", "Applications"});
  std::string found;
  platform_.files.walk(folder, [&](const WalkedItem& item) {
    if (!found.empty() || !item.isPackage) return;
    const auto bundle = platform_.bundles.bundleAtPath(item.path);
    const std::string name = bundle != nullptr ? bundle->infoValue("CFBundleName").text() : "";
    if (isAmong(applications, name)) found = name;
  });
  return found;
}

void RunningHostViewController::AddKillNotify() {
  terminations_ = platform_.workspace.observeTerminations(
      [this](const std::string& applicationName) { appTerminated(applicationName); });
  launches_ = platform_.workspace.observeLaunches([this](const std::string& /*applicationName*/) { checkAgain(); });
}

void RunningHostViewController::RemoveKillNotify() {
  terminations_.reset();
  launches_.reset();
}

void RunningHostViewController::appTerminated(const std::string& applicationName) {
  platform_.log.write(formatted("terminated %@", applicationName));
  checkAgain();
}

void RunningHostViewController::checkAgain() {
  const bool isRunning = checkForRunningHosts();
  if (isRunning && model_->hostIsRunning()) return;
  SetupMainController& main = mainController();
  main.willChangeValueForKey("enableForward");
  main.willChangeValueForKey("mainLabelText");
  model_->setHostIsRunning(isRunning);
  main.didChangeValueForKey("enableForward");
  main.didChangeValueForKey("mainLabelText");
}

bool RunningHostViewController::canProceed(std::int32_t direction) {
  if (direction < 0) return true;
  // What was started a moment ago is noticed now at the latest, and shown as what is in the way.
  if (!hostsRunning_ && terminations_ != nullptr) checkAgain();
  return !hostsRunning_;
}
