#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QTimer>
#include <cstdlib>

#include "Driving.h"
#include "platform/qt/QtText.h"
#include "platform/qt/QtUserInterface.h"
#include "shell/Wizard.h"
#include "support/TestMachine.h"

namespace {

/// Labels and buttons that are shown have room for all of their text.
void expectTextsToFit(const QWidget& window) {
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
void look(QWidget& window, const std::string& name) {
  SCOPED_TRACE(name);
  QApplication::processEvents();  // the layout is done when the window is painted
  expectTextsToFit(window);
  const char* const folder = std::getenv("PAGE_PICTURES");
  if (folder == nullptr) return;
  EXPECT_TRUE(window.grab().save(toQt(std::string(folder) + "/" + name + "-" + std::getenv("LANGUAGE") + ".png")));
}

QWidget& window() { return *shownWidget<QWidget>("mainWindow"); }
std::string heading() { return fromQt(shownWidget<QLabel>("mainLabel")->text()); }
bool isEnabled(const char* button) { return shownWidget<QAbstractButton>(button)->isEnabled(); }

/// The wizard in its window, on a screen in memory: the program that was built, on a sample volume, with the real
/// platform.
class WizardTest : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root: an install changes owners";
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

  /// Starts the program, and the walk in its event loop; returns when the program has ended by itself.
  template <class Walk>
  void run(Walk walk) {
    LinuxPlatform system(
        volume_, INSTALLER_BUNDLE, user_,
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
    });
    EXPECT_TRUE(runWizard(system.platform()));
    EXPECT_TRUE(hasEnded) << "the window closed in the middle of the walk";
  }

  /// Looks at the page that is there now; its heading and buttons are where they were on the page before.
  void lookAtPage(const char* view, const std::string& name) {
    waitForPage(view);
    look(window(), name);
    const QRect place = shownWidget<QLabel>("mainLabel")->geometry();
    const QPoint corner = shownWidget<QWidget>("forwardButton")->geometry().bottomRight();
    if (heading_.isNull()) heading_ = place, corner_ = corner, size_ = window().size();
    EXPECT_TRUE(place == heading_ && corner == corner_ && window().size() == size_) << name << ": something moved";
  }

  /// Starts an application of the sample volume.
  void startHost(const std::string& name) {
    const std::string program = volume_.string() + "/Applications/" + name + "/" + name + ".app/Contents/MacOS/" + name;
    host_ = ::fork();
    if (host_ == 0) {
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

  TemporaryFolder folder_;
  fs::path volume_ = folder_.path() / "Macintosh HD";
  const UserAccount user_ = loggedInUser();
  const std::string log_ = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const std::string filter_ = "/Corvane/Dunmore 3.plugin";
  std::string atHosts_;  ///< the heading there
  const std::string ownFolder_ = "/Applications/Adobe Photoshop CS5/Plug-Ins";

 private:
  pid_t host_ = 0;
  QRect heading_;
  QPoint corner_;
  QSize size_;
};

class WizardInEveryLanguageTest : public WizardTest, public testing::WithParamInterface<const char*> {};

TEST_P(WizardInEveryLanguageTest, LeadsFromTheLicenceToTheEndByMouse) {
  speak(GetParam());
  startHost("Adobe Lightroom");
  run([this] {
    lookAtPage("licenseView", "licence");
    agreeToLicence([] { look(*shownWidget<QWidget>("alert"), "agree"); });
    lookAtPage("foundHostsController", "hosts");
    atHosts_ = heading();
    press("forwardButton");
    lookAtPage("rtfView", "running");
    EXPECT_FALSE(isEnabled("forwardButton"));
    endHost();
    waitUntil("the end of the host", [] { return isEnabled("forwardButton"); });
    lookAtPage("rtfView", "proceed");

    press("backwardButton");
    window().findChild<QAction*>("customInstallItem")->trigger();
    press("configureLumatraExternalEditors");
    press("customInstallButton");
    lookAtPage("customInstallView", "custom");
    pressLater("choose", [this] {
      look(*shownWidget<QWidget>("openPanel"), "browse");
      shownWidget<QLineEdit>("path")->setText(toQt(ownFolder_));
    });
    press("browseButton");
    whenShown("installProgressBar", [this](QWidget&) {
      lookAtPage("installFilesView", "install");
      EXPECT_FALSE(heading() == atHosts_ || isEnabled("backwardButton")) << "while it begins";
    });
    press("forwardButton");
    lookAtPage("registerView", "success");
    press("forwardButton");
  });
  expectWholeInstall();
  EXPECT_TRUE(logTells(ownFolder_ + filter_) && !logTells("/CC" + filter_)) << installed(log_);
  EXPECT_TRUE(logTells("/ExternalEditors.csv"));

  // A folder that cannot be one makes the next install fail; the folder of before is remembered.
  fs::remove_all(volume_ / "Applications/Adobe Photoshop CS6/Plug-Ins");
  writeFile(volume_ / "Applications/Adobe Photoshop CS6/Plug-Ins", "");
  run([this] {
    agreeToLicence();
    waitForPage("foundHostsController");
    window().findChild<QAction*>("customInstallItem")->trigger();
    press("customInstallButton");
    waitForPage("customPathField");
    EXPECT_EQ(fromQt(shownWidget<QLineEdit>("customPathField")->text()), ownFolder_);
    press("backwardButton");
    QTimer answer;
    bool hasLooked = false;
    QObject::connect(&answer, &QTimer::timeout, [&] {
      auto* const alert = shownWidget<QWidget>("alert");
      if (alert == nullptr) return;
      if (!std::exchange(hasLooked, true)) look(*alert, "error");
      press("defaultButton");
    });
    answer.start(5);
    press("forwardButton");
    lookAtPage("registerView", "failure");
    EXPECT_TRUE(hasLooked);
    press("forwardButton");
  });
  expectWholeInstall();
  EXPECT_FALSE(logTells("Photoshop CS6/Plug-Ins"));
}

INSTANTIATE_TEST_SUITE_P(Languages, WizardInEveryLanguageTest, testing::Values("en", "de", "fr", "es", "ja", "zh-Hans"),
                         [](const auto& language) { return std::string(language.param).substr(0, 2); });

/// Keys go where the focus is.
void key(Qt::Key pressed) { QTest::keyClick(window().focusWidget(), pressed); }

/// Object names of what the tabulator key reaches on the page, from the first control on.
std::string tabOrder() {
  std::string names;
  const QWidget* const first = window().focusWidget();
  for (int i = 0; i < 20; ++i) {
    QWidget* const focused = window().focusWidget();
    const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(focused);
    EXPECT_FALSE(told->text(QAccessible::Name).isEmpty()) << fromQt(focused->objectName());
    EXPECT_NE(told->role(), QAccessible::Client) << fromQt(focused->objectName());
    names += fromQt(focused->objectName()) + " ";
    QTest::keyClick(focused, Qt::Key_Tab);
    if (window().focusWidget() == first) break;
  }
  return names;
}

TEST_F(WizardTest, IsWalkedByKeyboardAlone) {
  speak("de");
  run([this] {
    waitForPage("licenseView");
    EXPECT_EQ(tabOrder(), "licenseTextView backwardButton forwardButton ");
    whenShown("alert", [](QWidget& alert) { QTest::keyClick(&alert, Qt::Key_Return); });
    key(Qt::Key_Return);

    waitForPage("foundHostsController");
    EXPECT_EQ(heading(), "Programme auswählen");
    EXPECT_EQ(tabOrder(), "foundHostsController configureLumatraExternalEditors backwardButton forwardButton ");
    window().findChild<QAction*>("customInstallItem")->trigger();
    while (fromQt(window().focusWidget()->objectName()) != "customInstallButton") key(Qt::Key_Tab);
    key(Qt::Key_Space);
    waitForPage("customPathField");
    EXPECT_EQ(tabOrder(),
              "browseButton customPathField installPluginCheckBox installScriptsAndPanelsCheckBox backwardButton ");
    while (fromQt(window().focusWidget()->objectName()) != "backwardButton") key(Qt::Key_Tab);
    key(Qt::Key_Space);
    waitForPage("foundHostsController");
    while (fromQt(window().focusWidget()->objectName()) != "foundHostsController") key(Qt::Key_Tab);
    auto& list = *shownWidget<QListWidget>("foundHostsController");
    ASSERT_EQ(list.count(), 4);
    key(Qt::Key_Home);
    ASSERT_EQ(fromQt(list.item(0)->text()), "Adobe Photoshop CS6");
    key(Qt::Key_Space);
    waitUntil("the tick's end", [&] { return list.item(0)->checkState() == Qt::Unchecked; });
    key(Qt::Key_Return);

    waitForPage("registerView");
    EXPECT_EQ(heading(), "Ergebnis der Installation");
    EXPECT_EQ(tabOrder(), "registerTextView forwardButton ");
    key(Qt::Key_Return);
  });
  expectWholeInstall();
  EXPECT_TRUE(logTells("/CC" + filter_));
  EXPECT_FALSE(logTells("Photoshop CS6")) << "its tick was taken off";
}

TEST_F(WizardTest, EndsWhereverItsWindowIsClosed) {
  const auto isUntouched = [this] { return installed(log_) == "(no such file)"; };
  run([] { window().close(); });
  run([] {
    agreeToLicence();
    waitForPage("foundHostsController");
    window().close();
  });
  startHost("Adobe Lightroom");
  run([] {
    agreeToLicence();
    press("forwardButton");
    waitForPage("rtfView");
    window().close();
  });
  endHost();
  EXPECT_TRUE(isUntouched());

  int times = 0;
  run([&times] {
    agreeToLicence();
    waitForPage("foundHostsController");
    whenShown("installFilesView", [&times](QWidget&) {
      ++times;
      for (const char* const button : {"forwardButton", "backwardButton"}) EXPECT_FALSE(isEnabled(button));
      EXPECT_FALSE(window().close()) << "an install is not left half-way";
    });
    press("forwardButton");
    waitForPage("registerView");
    window().close();
  });
  EXPECT_EQ(times, 1);
  expectWholeInstall();
  EXPECT_TRUE(logTells("/CC" + filter_));
}

}  // namespace
