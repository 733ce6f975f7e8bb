// SPDX-License-Identifier: Apache-2.0

// Takes the place of the installer's Window.so and pictures its pages for the README. PICTURES names the folder,
// PICTURE_MODE what to show: "walk", "failure" or "hosts".

#include <QAbstractButton>
#include <QAction>
#include <QLineEdit>
#include <QProgressBar>
#include <QTimer>
#include <cstdlib>
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

/// Pictures the install when a third of it is done, and when it is over, the last page.
void pictureInstall(const std::string& name) {
  QTimer look;
  bool isDone = false;
  QObject::connect(&look, &QTimer::timeout, [&] {
    const auto* const bar = shownWidget<QProgressBar>("installProgressBar");
    if (isDone || bar == nullptr || bar->value() * 3 < bar->maximum()) return;
    isDone = true;
    picture(name);
  });
  look.start(1);
  press("forwardButton");
  waitForPage("registerView");
}

/// SIGTERM to the application that the script started, whose page goes by itself.
void endHost() {
  const char* const end = std::getenv("END_HOST");
  if (end == nullptr || std::system(end) != 0) std::cerr << "the host was not ended\n";
}

void walk() {
  picture("licence");
  agreeToLicence();
  waitForPage("foundHostsController");
  picture("hosts");
  press("forwardButton");
  waitForPage("rtfView");
  picture("running-host");
  endHost();
  waitUntil("the end of the host", [] { return shownWidget<QAbstractButton>("forwardButton")->isEnabled(); });
  press("backwardButton");
  pick("customInstallItem");
  press("customInstallButton");
  waitForPage("customPathField");
  chooseLater("/Applications/Adobe Photoshop CS5/Plug-Ins");
  press("browseButton");
  picture("custom-folder");
  press("backwardButton");
  waitForPage("foundHostsController");
  pictureInstall("installing");
  picture("completion");
  press("forwardButton");
}

void fail() {
  agreeToLicence();
  QTimer answer;  // an alert for each file
  QObject::connect(&answer, &QTimer::timeout, [] {
    if (auto* const button = shownWidget<QAbstractButton>("defaultButton")) button->click();
  });
  answer.start(5);
  press("forwardButton");
  waitForPage("registerView");
  picture("failure");
  press("forwardButton");
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
