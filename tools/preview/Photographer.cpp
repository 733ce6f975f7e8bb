// SPDX-License-Identifier: Apache-2.0

// Takes the place of the installer's Window.so and pictures its pages. PICTURES names the folder, PICTURE_MODE what to
// show: "walk", "failure" or "hosts". END_HOST is the command that ends the hosts that run, PICTURE_FOLDER a folder of
// the volume to install into.

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QProgressBar>
#include <QTimer>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <string>
#include <string_view>

#include "WindowDriver.h"

namespace {

QWidget& window() { return *shownWidget<QWidget>("mainWindow"); }

void picture(const std::string& name) {
  QApplication::processEvents();
  const QString path = QString::fromUtf8(std::getenv("PICTURES")) + '/' + QString::fromStdString(name) + ".png";
  if (!window().grab().save(path)) std::cerr << "cannot write " << path.toStdString() << '\n';
}

void pick(const char* item) { window().findChild<QAction*>(item)->trigger(); }

/// SIGTERM to the applications that the script started, whose page goes by itself.
void endHosts() {
  const char* const end = std::getenv("END_HOST");
  if (end == nullptr || std::system(end) != 0) std::cerr << "the hosts were not ended\n";
}

/// The first of the pages that is shown, once one of them is.
const char* waitForOneOf(std::initializer_list<const char*> pages) {
  const char* shown = nullptr;
  waitUntil("the next page", [&] {
    const auto* const found =
        std::ranges::find_if(pages, [](const char* page) { return shownWidget<QWidget>(page) != nullptr; });
    if (found != pages.end()) shown = *found;
    return shown != nullptr;
  });
  return shown;
}

/// Goes from the choice of hosts to the end. Pictures each page.
void install(const char* lastPicture) {
  press("forwardButton");
  for (;;) {
    const std::string_view page = waitForOneOf({"rtfView", "apertureRunView", "registerView"});
    if (page == "rtfView") {
      picture("running-host");
      endHosts();
      waitUntil("the end of the hosts", [] { return shownWidget<QAbstractButton>("forwardButton")->isEnabled(); });
      picture("ready");
    } else {
      picture(page == "registerView" ? lastPicture : "aperture");
    }
    press("forwardButton");
    if (page == "registerView") return;
    waitUntil("the next page", [page] { return shownWidget<QWidget>(page.data()) == nullptr; });
  }
}

void pictureCustomFolder() {
  const char* const folder = std::getenv("PICTURE_FOLDER");
  pick("customInstallItem");
  press("customInstallButton");
  waitForPage("customPathField");
  if (folder != nullptr) {
    chooseLater(folder);
    press("browseButton");
  }
  picture("custom-folder");
  press("backwardButton");
}

/// Pictures the install when a third of it is done.
class InstallPicture {
 public:
  InstallPicture() {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      const auto* const bar = shownWidget<QProgressBar>("installProgressBar");
      if (bar == nullptr || bar->value() * 3 < bar->maximum()) return;
      timer_.stop();
      picture("installing");
    });
    timer_.start(1);
  }

 private:
  QTimer timer_;
};

void walk() {
  picture("licence");
  agreeToLicence();
  if (waitForOneOf({"foundHostsController", "customInstallView"}) == std::string_view("customInstallView")) {
    picture("custom-folder");  // no host was found
    return static_cast<void>(window().close());
  }
  picture("hosts");
  pictureCustomFolder();
  waitForPage("foundHostsController");
  const InstallPicture whileInstalling;
  install("completion");
}

void fail() {
  agreeToLicence();
  waitForPage("foundHostsController");
  QTimer answer;  // an alert for each file
  QObject::connect(&answer, &QTimer::timeout, [] {
    if (auto* const button = shownWidget<QAbstractButton>("defaultButton")) button->click();
  });
  answer.start(5);
  install("failure");
}

void pictureHosts() {
  agreeToLicence();
  waitForPage("foundHostsController");
  const char* const name = std::getenv("PICTURE_NAME");
  picture(name == nullptr ? "hosts" : name);
  window().close();
}

}  // namespace

void startDriving() {
  const char* const wanted = std::getenv("PICTURE_MODE");
  const std::string_view mode = wanted == nullptr ? "" : wanted;
  // The window is not there before the event loop runs.
  QTimer::singleShot(0, qApp, mode == "walk" ? walk : mode == "failure" ? fail : pictureHosts);
}
