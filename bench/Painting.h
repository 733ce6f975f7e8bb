// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QApplication>
#include <QEvent>
#include <QObject>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>

/// Sees every paint event of the application's windows.
class Painting : public QObject {
 public:
  using Clock = std::chrono::steady_clock;

  Painting() { qApp->installEventFilter(this); }

  /// When the last event came.
  [[nodiscard]] Clock::time_point last() const { return last_; }
  [[nodiscard]] bool hasStarted() const { return last_ != Clock::time_point(); }
  /// From now on.
  void startMeasuringGaps() {
    longestGap_ = {};
    last_ = Clock::now();
  }
  [[nodiscard]] Clock::duration longestGap() const { return std::max(longestGap_, Clock::now() - last_); }

  std::function<void()> onFirst = [] {};

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && watched->isWidgetType()) {
      const auto now = Clock::now();
      const bool isFirst = !hasStarted();
      if (!isFirst) longestGap_ = std::max(longestGap_, now - last_);
      last_ = now;
      if (isFirst) onFirst();
    }
    return QObject::eventFilter(watched, event);
  }

  Clock::time_point last_;
  Clock::duration longestGap_{};
};

inline double milliseconds(Painting::Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

/// What was measured goes to the file that BENCH_RESULTS names, a line each.
inline void report(const char* name, double value) {
  std::ofstream(std::getenv("BENCH_RESULTS"), std::ios::app) << name << ' ' << std::fixed << value << '\n';
}
