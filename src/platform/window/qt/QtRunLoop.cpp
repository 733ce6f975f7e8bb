// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtRunLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace {

/// A descriptor that is watched. Its notifier goes when the loop is reached again, or with the loop, because the watch
/// may end while the notifier calls.
struct Watched {
  Watched(int descriptor, QObject& parent)
      : notifier(new QSocketNotifier(descriptor, QSocketNotifier::Read, &parent)) {}
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
  ~Watched() {
    if (notifier == nullptr) return;
    notifier->setEnabled(false);
    notifier->disconnect();
    notifier->deleteLater();
  }

  QPointer<QSocketNotifier> notifier;
};

/// Milliseconds until the limit, rounded up so that nobody wakes before it.
int timeUntil(RunLoop::Clock::time_point limit) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - RunLoop::Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, std::numeric_limits<int>::max()));
}

/// Processes events. A loop around this one checks afterwards whether it has been ended: the events may include the
/// wake-up that was meant for it.
void processEvents(QEventLoop::ProcessEventsFlags flags) {
  QCoreApplication::processEvents(flags);
  QCoreApplication::eventDispatcher()->wakeUp();
}

}  // namespace

DescriptorRunLoop::Watch QtRunLoop::watchReadable(int descriptor, std::function<void()> handler) {
  auto watched = std::make_shared<Watched>(descriptor, notifiers_);
  QObject::connect(watched->notifier.data(), &QSocketNotifier::activated,
                   [handler = std::move(handler)] { handler(); });
  return watched;
}

bool QtRunLoop::runBeforeDate(Clock::time_point limit) {
  if (limit == distantFuture) {
    processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return true;
  }
  const int wait = timeUntil(limit);
  if (wait == 0) {
    processEvents(QEventLoop::AllEvents);
    return true;
  }
  QTimer deadline;  // wakes the loop
  deadline.setTimerType(Qt::PreciseTimer);
  deadline.setSingleShot(true);
  deadline.start(wait);
  processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  return true;
}

void QtRunLoop::runUntilDate(Clock::time_point limit) {
  do {
    runBeforeDate(limit);
  } while (Clock::now() < limit);
  // A change lays the window out, and only that asks for painting.
  QCoreApplication::sendPostedEvents();
}
