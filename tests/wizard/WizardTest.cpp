// SPDX-License-Identifier: Apache-2.0

#include "wizard/WizardTest.h"

#include <QAccessible>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QWindow>

namespace {

/// Object names of what the tabulator key reaches on the page, from the first control on; a screen reader has a name
/// for each.
std::string tabOrder() {
  std::string names;
  const QWidget* const first = window().focusWidget();
  for (int i = 0; i < 20; ++i) {
    const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(window().focusWidget());
    EXPECT_FALSE(told->text(QAccessible::Name).isEmpty()) << focused();
    EXPECT_NE(told->role(), QAccessible::Client) << focused();
    names += focused() + " ";
    key(Qt::Key_Tab);
    if (window().focusWidget() == first) break;
  }
  return names;
}

void pickByKeyboard(const char* item) {
  QTest::keyClick(&window(), Qt::Key_F10);
  auto* const bar = window().findChild<QMenuBar*>();
  QTest::keyClick(bar, Qt::Key_Down);
  waitUntil("the menu", [] { return QApplication::activePopupWidget() != nullptr; });
  auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  const auto* const wanted = window().findChild<QAction*>(item);
  for (int i = 0; i < 10 && menu->activeAction() != wanted; ++i) QTest::keyClick(menu, Qt::Key_Down);
  EXPECT_EQ(menu->activeAction(), wanted);
  QTest::keyClick(menu, Qt::Key_Return);
}

TEST_F(WizardTest, IsWalkedByKeyboardAlone) {
  speak("de");
  startHost("Adobe Lightroom");
  run([this] {
    waitForPage("licenseView");
    EXPECT_EQ(page(), "Lizenzvertrag [Beenden|Fortfahren]");
    EXPECT_EQ(steps(), "Lizenz* Programme Vorbereitung Installation Zusammenfassung ");
    EXPECT_TRUE(textIn("licenseTextView").starts_with("Corvane Software-Lizenzvertrag"));
    EXPECT_EQ(tabOrder(), "licenseTextView backwardButton forwardButton ");
    for (const auto answer : {Qt::Key_Escape, Qt::Key_Return}) {
      EXPECT_EQ(page(), "Lizenzvertrag [Beenden|Fortfahren]") << "until there is agreement";
      whenShown("alert", [answer](QWidget& alert) {
        EXPECT_EQ(fromQt(alert.findChild<QLabel*>("qt_msgbox_label")->text()),
                  "Sind Sie mit den Lizenzbedingungen einverstanden?");
        EXPECT_EQ(fromQt(alert.findChild<QPushButton*>("alternateButton")->text()), "Ablehnen");
        QTest::keyClick(&alert, answer);
      });
      key(Qt::Key_Return);
    }

    waitForPage("foundHostsController");
    EXPECT_EQ(page(), "Programme auswählen [Zurück|Fortfahren]");
    EXPECT_EQ(steps(), "Lizenz Programme* Vorbereitung Installation Zusammenfassung ");
    EXPECT_EQ(tabOrder(), "foundHostsController configureLumatraExternalEditors backwardButton forwardButton ");
    tabTo("backwardButton");
    key(Qt::Key_Space);
    waitForPage("licenseView");
    key(Qt::Key_Return);  // who has agreed is not asked again
    waitForPage("foundHostsController");
    QTest::keyClick(window().windowHandle(), Qt::Key_I, Qt::AltModifier);
    waitUntil("the menu by its letter", [] { return QApplication::activePopupWidget() != nullptr; });
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    QTest::keyClick(window().findChild<QMenuBar*>(), Qt::Key_Escape);
    pickByKeyboard("customInstallItem");
    tabTo("customInstallButton");
    key(Qt::Key_Space);
    waitForPage("customPathField");
    EXPECT_EQ(tabOrder(), "browseButton customPathField installPluginCheckBox backwardButton ")
        << "nothing about scripts and panels, which no host has to give";
    EXPECT_EQ(page(), "Programme auswählen [Zurück|-Fortfahren]") << "no folder yet";
    tabTo("backwardButton");
    key(Qt::Key_Space);
    waitForPage("foundHostsController");
    tabTo("foundHostsController");
    auto& list = *shownWidget<QListWidget>("foundHostsController");
    ASSERT_EQ(list.count(), 4);
    key(Qt::Key_Home);
    ASSERT_EQ(fromQt(list.item(0)->text()), "Adobe Photoshop CS6");
    key(Qt::Key_Space);
    waitUntil("the tick's end", [&] { return list.item(0)->checkState() == Qt::Unchecked; });
    EXPECT_EQ(list.currentRow(), 0);
    key(Qt::Key_Return);

    waitForPage("rtfView");
    EXPECT_EQ(page(), "Laufende Programme beenden [Zurück|-Fortfahren]");
    EXPECT_EQ(steps(), "Lizenz Programme Vorbereitung* Installation Zusammenfassung ");
    EXPECT_TRUE(textIn("rtfTextView").starts_with("Lightroom ist geöffnet.")) << textIn("rtfTextView");
    key(Qt::Key_Return);
    endHost();
    waitUntil("the end of the host", [] { return page() == "Vielen Dank [Zurück|Fortfahren]"; });
    EXPECT_TRUE(textIn("rtfTextView").starts_with("Alles ist für Dunmore 3 bereit."));
    whenShown("installProgressBar", [](QWidget&) {
      waitUntil("the heading", [] { return page() == "Corvane-Software wird installiert [-Zurück|-Fortfahren]"; });
      EXPECT_EQ(steps(), "Lizenz Programme Vorbereitung Installation* Zusammenfassung ");
    });
    key(Qt::Key_Return);

    waitForPage("registerView");
    EXPECT_EQ(page(), "Ergebnis der Installation [-Zurück|Fertig]");
    EXPECT_EQ(steps(), "Lizenz Programme Vorbereitung Installation Zusammenfassung* ");
    EXPECT_TRUE(textIn("registerTextView").starts_with("Dunmore 3 ist installiert."));
    EXPECT_EQ(tabOrder(), "registerTextView showFolderButton showLogButton forwardButton ");
    key(Qt::Key_Return);
  });
  expectWholeInstall();
  EXPECT_TRUE(logTells("/CC" + filter_));
  EXPECT_FALSE(logTells("Photoshop CS6")) << "its tick was taken off";
}

TEST_F(WizardTest, EndsWhereverItsWindowIsClosed) {
  run([] { window().close(); });
  run([] { press("backwardButton"); });  // which quits on the first page
  run([] { ::raise(SIGTERM); });
  run([] {
    whenShown("hostsView", [](QWidget&) { window().close(); });  // as it is being entered
    agreeToLicence();
  });
  startHost("Adobe Lightroom");
  run([] {
    agreeToLicence();
    press("forwardButton");
    waitForPage("rtfView");
    pick("quitItem");
  });
  endHost();
  EXPECT_EQ(installed(log_), "(no such file)");
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
}

TEST_F(WizardTest, AsksWhoClosesItsWindowWhetherToStopTheInstall) {
  for (const char* const answer : {"defaultButton", "alternateButton"}) {
    const bool stops = answer == std::string("defaultButton");
    run([answer, stops] {
      agreeToLicence();
      waitForPage("foundHostsController");
      bool isAsked = false;
      QTimer impatience;
      QObject::connect(&impatience, &QTimer::timeout, [&isAsked, answer] {
        if (shownWidget<QWidget>("installFilesView") == nullptr || std::exchange(isAsked, true)) return;
        for (const auto pressed : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Space}) QTest::keyClick(&window(), pressed);
        EXPECT_EQ(page(), "Installing Corvane Software [-Go Back|-Continue]") << "whatever key is pressed";
        pressLater(answer, [] {
          EXPECT_EQ(fromQt(shownWidget<QWidget>("alert")->findChild<QLabel*>("qt_msgbox_label")->text()),
                    "Stop installing?");
        });
        EXPECT_FALSE(window().close());
      });
      impatience.start(0);
      press("forwardButton");
      EXPECT_TRUE(isAsked);
      if (stops) return;
      impatience.stop();
      waitForPage("registerView");
      press("forwardButton");
    });
    EXPECT_EQ(installed(log_) == "(no such file)", stops);
    EXPECT_EQ(namesIn(volume_ / "Library/Application Support") == "Adobe", stops);
  }
  expectWholeInstall();
}

TEST_F(WizardTest, ProgramLoadsItsWindowAndEndsWithSuccess) {
  // The module that makes the README's pictures works the window.
  useOwnBundle();
  const fs::path module = bundle_ / "Contents/PlugIns/Window.so";
  fs::rename(module, module.parent_path() / "RealWindow.so");
  fs::copy_file(PHOTOGRAPHER, module);
  startHost("Adobe Lightroom");
  ::setenv("PICTURES", folder_.path().c_str(), 1);
  ::setenv("PICTURE_MODE", "walk", 1);
  ::setenv("END_HOST", ("kill " + std::to_string(host_)).c_str(), 1);
  const std::string program = bundle_ / "Contents/MacOS/Installer";
  EXPECT_EQ(std::system(("'" + program + "' -target '" + volume_.string() + "'").c_str()), 0);
  expectWholeInstall();
  EXPECT_TRUE(logTells("/CC" + filter_));
  EXPECT_TRUE(fs::exists(folder_.path() / "completion.png"));
}

}  // namespace
