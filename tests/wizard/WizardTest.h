// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>

#include "Driving.h"
#include "foundation/Text.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/window/qt/QtText.h"
#include "platform/window/qt/QtUserInterface.h"
#include "shell/Wizard.h"
#include "support/ProgramTest.h"

inline QWidget& window() { return *shownWidget<QWidget>("mainWindow"); }
inline bool isEnabled(const char* button) { return shownWidget<QAbstractButton>(button)->isEnabled(); }
inline void pick(const char* menuItem) { window().findChild<QAction*>(menuItem)->trigger(); }
inline std::string textIn(const char* edit) { return fromQt(shownWidget<QTextEdit>(edit)->toPlainText()); }

/// The page's heading and the captions of its buttons, with "-" for one that cannot be pressed.
inline std::string page() {
  const auto caption = [](const char* name) {
    return (isEnabled(name) ? "" : "-") + fromQt(shownWidget<QAbstractButton>(name)->text());
  };
  return fromQt(shownWidget<QLabel>("mainLabel")->text()) + " [" + caption("backwardButton") + "|" +
         caption("forwardButton") + "]";
}

/// The step list from its top, with "*" for the step that is marked, by its dot and its letters.
inline std::string steps() {
  std::map<int, std::string> rows;
  for (QLabel* const label : window().findChildren<QLabel*>("label")) {
    const auto* const dot = label->parentWidget()->findChild<QLabel*>("indicator");
    const QImage picture = dot->pixmap().toImage();
    const QColor middle = picture.pixelColor(picture.rect().center());
    EXPECT_EQ(label->font().bold(), middle.hslSaturation() > 50) << fromQt(label->text());
    rows[label->mapTo(&window(), QPoint()).y()] = fromQt(label->text()) + (label->font().bold() ? "* " : " ");
  }
  std::string text;
  for (const auto& [y, row] : rows) text += row;
  return text;
}

inline std::string focused() { return fromQt(window().focusWidget()->objectName()); }

/// Keys go where the focus is.
inline void key(Qt::Key pressed) { QTest::keyClick(window().focusWidget(), pressed); }

inline void tabTo(const std::string& control) {
  for (int i = 0; i < 20 && focused() != control; ++i) key(Qt::Key_Tab);
  EXPECT_EQ(focused(), control);
}

/// Labels and buttons that are shown have room for all of their text.
inline void expectTextsToFit(const QWidget& window) {
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    const bool showsText =
        qobject_cast<const QLabel*>(widget) != nullptr || qobject_cast<const QAbstractButton*>(widget) != nullptr;
    const bool isCutOnPurpose = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
    if (!widget->isVisible() || widget->objectName().isEmpty() || !showsText || isCutOnPurpose) continue;
    EXPECT_LE(widget->minimumSizeHint().width(), widget->width()) << fromQt(widget->objectName());
    const int height = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width()) : 0;
    EXPECT_LE(height, widget->height()) << fromQt(widget->objectName());
  }
}

/// With PAGE_PICTURES naming a folder, what is looked at is saved there for people to look at, too.
inline void look(QWidget& window, const std::string& name) {
  SCOPED_TRACE(name);
  QApplication::processEvents();  // the layout is done when the window is painted
  expectTextsToFit(window);
  const char* const folder = std::getenv("PAGE_PICTURES");
  if (folder == nullptr) return;
  EXPECT_TRUE(window.grab().save(toQt(std::string(folder) + "/" + name + "-" + std::getenv("LANGUAGE") + ".png")));
}

/// The wizard in its window, on a screen in memory: the program that was built, on a sample volume, with the real
/// platform.
class WizardTest : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root: an install changes owners";
    ASSERT_EQ(::flock(turn_.get(), LOCK_EX), 0);
    speak("en");
    ASSERT_EQ(std::system((MAKE_SAMPLE_VOLUME " '" + volume_.string() + "' " + user_.name + " " STAND_IN).c_str()), 0);
  }
  static void speak(const char* language) {
    ::setenv("LC_ALL", "en_GB.UTF-8", 1);  // with C, LANGUAGE says nothing
    ::setenv("LANGUAGE", language, 1);
  }
  void TearDown() override {
    if (host_ > 0) endHost();
  }
  /// Starts a copy of the program from now on, which a test may change.
  void useOwnBundle() {
    bundle_ = folder_.path() / "Installer.app";
    copyInstaller(bundle_);
  }

  /// Starts the program, and the walk in its event loop; returns when the program has ended by itself.
  template <class Walk>
  void run(Walk walk) {
    LinuxPlatform system(
        Volume(volume_, bundle_), bundle_, user_,
        [](const WindowServices& services) {
          std::string problem;
          return QtUserInterface::make(services, problem);
        },
        Surface::window);
    bool hasEnded = false;
    QTimer::singleShot(0, qApp, [&] {
      waitForPage("mainWindow");
      walk();
      hasEnded = true;
      waitUntil("the window's end", [] { return shownWidget<QWidget>("mainWindow") == nullptr; });
    });
    EXPECT_TRUE(runWizard(system.platform()));
    EXPECT_TRUE(hasEnded) << "the window closed in the middle of the walk";
  }

  /// Starts an application of the sample volume.
  void startHost(const std::string& name) {
    const std::string program = volume_.string() + "/Applications/" + name + "/" + name + ".app/Contents/MacOS/" + name;
    host_ = ::fork();
    if (host_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // a walk that gives up ends without tearing anything down
      ::execl(program.c_str(), program.c_str(), nullptr);
      ::_exit(1);
    }
  }
  void endHost() {
    ::kill(host_, SIGTERM);
    ::waitpid(host_, nullptr, 0);
    host_ = 0;
  }

  [[nodiscard]] std::string installed(const std::string& path) const { return readFile(volume_.string() + path); }
  [[nodiscard]] bool logTells(const std::string& path) const { return installed(log_).find(path) != std::string::npos; }
  /// Nothing that the log tells of is missing, and nothing half-made was left behind.
  void expectWholeInstall() const {
    std::istringstream paths(installed(log_));
    for (std::string path; std::getline(paths, path);) EXPECT_TRUE(fs::exists(volume_.string() + path)) << path;
    for (const auto& entry : fs::recursive_directory_iterator(volume_)) {
      EXPECT_EQ(entry.path().filename().string().find(".installing-"), std::string::npos) << entry.path();
    }
  }

  /// Each test in its turn, whoever runs it: an application that one starts runs for all of the machine.
  FileDescriptor turn_{
      ::open((fs::temp_directory_path() / "installer-wizard-tests").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)};
  TemporaryFolder folder_;
  fs::path volume_ = folder_.path() / "Macintosh HD";
  fs::path bundle_ = INSTALLER_BUNDLE;
  const UserAccount user_ = *loggedInUser();
  const std::string log_ = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const std::string filter_ = "/Corvane/Dunmore 3.plugin";
  const std::string ownFolder_ = "/Applications/Adobe Photoshop CS5/Plug-Ins";
  pid_t host_ = 0;
};
