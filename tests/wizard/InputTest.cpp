// SPDX-License-Identifier: Apache-2.0

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

#include "wizard/WizardTest.h"

namespace {

/// What a keyboard sends while the key stays down.
void hold(QWidget& focused, Qt::Key key) {
  for (int i = 0; i < 20; ++i) {
    QKeyEvent again(QEvent::KeyPress, key, Qt::NoModifier, key == Qt::Key_Return ? "\r" : " ", /*autorep=*/true);
    QApplication::sendEvent(&focused, &again);
  }
}

/// Both clicks at the same place, and what the pointer meets there gets them.
void doubleClick(const char* button) {
  const QWidget& shown = *shownWidget<QWidget>(button);
  const QPointF place = shown.mapTo(&window(), shown.rect().center());
  const auto send = [&](QEvent::Type type, Qt::MouseButtons held) {
    QMouseEvent event(type, place, window().mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(window().windowHandle(), &event);
  };
  for (int i = 0; i < 2; ++i) {
    send(QEvent::MouseButtonPress, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, Qt::NoButton);
  }
}

TEST_F(WizardTest, HeldKeysAndDoubleClicksPressNothingTwice) {
  startHost("Adobe Lightroom");
  run([] {
    waitForPage("licenseView");
    whenShown("alert", [](QWidget& alert) {
      hold(*alert.focusWidget(), Qt::Key_Return);
      hold(*alert.focusWidget(), Qt::Key_Space);
      EXPECT_TRUE(alert.isVisible());
      QTest::keyClick(&alert, Qt::Key_Escape);
    });
    key(Qt::Key_Return);
    EXPECT_EQ(page(), "License Agreement [Quit|Continue]");
    agreeToLicence();
    waitForPage("foundHostsController");
    for (const char* const control : {"foundHostsController", "forwardButton"}) {
      tabTo(control);
      hold(*window().focusWidget(), Qt::Key_Return);
      EXPECT_NE(shownWidget<QWidget>("hostsView"), nullptr) << control;
    }
    press("backwardButton");
    waitForPage("licenseView");
    doubleClick("forwardButton");
    QTest::qWait(50);
    EXPECT_NE(shownWidget<QWidget>("hostsView"), nullptr);
    press("forwardButton");
    waitForPage("rtfView");
    tabTo("backwardButton");
    key(Qt::Key_Return);  // presses the button that has the focus
    EXPECT_NE(shownWidget<QWidget>("hostsView"), nullptr);
    window().close();
  });
}

}  // namespace
