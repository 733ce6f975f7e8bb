// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QEventLoop>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <set>

#include "platform/Toolkit.h"

/// The application's windows, and its life: it ends when the last of them has closed and its delegate says so.
class QtWindows : public QObject {
 public:
  void setDelegate(ApplicationDelegate* delegate) { delegate_ = delegate; }

  [[nodiscard]] std::shared_ptr<Window> windowOf(QWidget& widget);

  /// Handles events until the application ends; at once when it has ended, or when there is no window to do anything
  /// in.
  void run();

  /// The window that is in front; null when none is shown.
  [[nodiscard]] QWidget* frontWindow() const;
  /// Closes every window as the person would, unless the delegate has something against it.
  void closeAll();
  void hideAll();

  // For Window.
  void show(QWidget& window);
  void closeWithoutAsking(QWidget& window);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void windowClosed();

  std::set<QWidget*> shown_;
  ApplicationDelegate* delegate_ = nullptr;
  bool asks_ = true;
  bool hasEnded_ = false;
  QEventLoop loop_;
};
