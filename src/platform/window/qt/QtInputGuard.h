// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

#include "platform/window/ClickGuard.h"

/// Keeps the application from doing more than the person means: a key that is held presses nothing again, a click that
/// was meant for what was there before presses no button, and Return presses the button that has the focus.
class QtInputGuard : public QObject {
 private:
  bool eventFilter(QObject* watched, QEvent* event) override;

  ClickGuard clicks_;
  /// Between a press on the window and on the widget in it. What changes then, because a field loses the focus, say, is
  /// an effect of the press.
  bool isPressing_ = false;
};
