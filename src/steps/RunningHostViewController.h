// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/HostModel.h"
#include "platform/Platform.h"
#include "steps/PageController.h"
#include "steps/RunningHostViewModel.h"

/// The page that waits until nothing runs that the install is about to write to: no chosen host, and none of the
/// product's own applications. It passes itself at once when there is nothing to wait for. While it waits it follows
/// what is quit and what is started.
class RunningHostViewController : public PageController {
 public:
  RunningHostViewController(Platform& platform, std::shared_ptr<RunningHostViewModel> model)
      : platform_(platform), model_(std::move(model)) {}

  [[nodiscard]] bool enableForward() const override { return !hostsRunning_; }
  /// Back is always possible.
  [[nodiscard]] bool canProceed(std::int32_t direction) override;
  void didProceed(std::int32_t delta) override;
  /// The page has its own model, whatever it is given.
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

  /// The part of a name by which the host is recognised among running applications. A custom folder counts as
  /// Photoshop, and any kind without an answer of its own as Aperture.
  [[nodiscard]] static std::string hostAppSearchString(const HostModel& host);

  /// Whether an application runs whose name holds the text. "Photoshop" must stand at the start of the name, with a
  /// maker's name before it it does not count; any other text counts anywhere, but not in the name of an installer.
  [[nodiscard]] bool isHostRunning(std::string_view searchString) const;

  /// Looks for the first application to wait for, and has the page name it.
  bool checkForRunningHosts();

  // Watching for the end of applications, and for their start.
  void AddKillNotify();
  void RemoveKillNotify();
  void appTerminated(const std::string& applicationName);

 private:
  /// The name of an application of the payload that is among these; empty when there is none.
  [[nodiscard]] std::string payloadAmong(const std::vector<std::string>& applications) const;
  /// Looks again and has the window show what was found.
  void checkAgain();

  Platform& platform_;
  std::shared_ptr<RunningHostViewModel> model_;
  bool hostsRunning_ = false;
  Workspace::Observation terminations_;
  Workspace::Observation launches_;
};
