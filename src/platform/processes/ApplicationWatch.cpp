// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/ApplicationWatch.h"

#include <algorithm>
#include <cerrno>

#include "platform/files/SystemCalls.h"
#include "platform/processes/ApplicationProcesses.h"
#include "platform/processes/ProcessEnd.h"
#include "platform/processes/Ticks.h"

struct ApplicationWatch::Observer {
  Observer(std::weak_ptr<ApplicationWatch> o, Workspace::TerminationHandler h)
      : owner(std::move(o)), handler(std::move(h)) {}
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;
  ~Observer() {
    if (const auto watch = owner.lock()) watch->watchWhileObserved();
  }

  std::weak_ptr<ApplicationWatch> owner;
  Workspace::TerminationHandler handler;
};

struct ApplicationWatch::LaunchObserver {
  Workspace::LaunchHandler handler;
  std::vector<Process> known;
  FileDescriptor ticks = tickDescriptor(std::chrono::seconds(1));
  DescriptorRunLoop::Watch watch = nullptr;
};

std::vector<std::string> ApplicationWatch::namesOfRunning() {
  const std::vector<Process> running = look();
  if (observers().empty()) {
    std::erase_if(applications_,
                  [&](const auto& known) { return std::ranges::find(running, known.first) == running.end(); });
  }
  std::vector<std::string> names;
  names.reserve(running.size());
  for (const Process& process : running) names.push_back(applications_.at(process).name);
  watchWhileObserved();
  return names;
}

std::shared_ptr<void> ApplicationWatch::observe(Workspace::TerminationHandler handler) {
  static_cast<void>(look());
  auto observer = std::make_shared<Observer>(weak_from_this(), std::move(handler));
  observers_.push_back(observer);
  watchWhileObserved();
  return observer;
}

std::shared_ptr<void> ApplicationWatch::observeLaunches(Workspace::LaunchHandler handler) {
  auto observer = std::make_shared<LaunchObserver>(LaunchObserver{.handler = std::move(handler), .known = look()});
  if (!observer->ticks) return observer;
  observer->watch =
      runLoop_.watchReadable(observer->ticks.get(), [owner = weak_from_this(), weak = std::weak_ptr(observer)] {
        const auto watch = owner.lock();
        const auto observing = weak.lock();
        if (watch != nullptr && observing != nullptr) watch->lookForLaunches(*observing);
      });
  return observer;
}

void ApplicationWatch::lookForLaunches(LaunchObserver& observer) {
  takeTick(observer.ticks.get());
  std::vector<Process> running = look();
  watchWhileObserved();
  std::vector<std::string> started;
  for (const Process& process : running) {
    if (std::ranges::find(observer.known, process) == observer.known.end()) {
      started.push_back(applications_.at(process).name);
    }
  }
  observer.known = std::move(running);
  for (const std::string& name : started) observer.handler(name);
}

std::vector<ApplicationWatch::Process> ApplicationWatch::look() {
  std::vector<Process> running;
  for (const ApplicationProcess& found : applicationProcesses()) {
    const Process process(found.id, found.startTime);
    if (!applications_.contains(process)) {
      FileDescriptor end = processEndDescriptor(found.id);
      if (!end && errno == ESRCH) continue;
      if (startTimeOfProcess(found.id) != found.startTime) continue;  // ended, and another has its number
      applications_.emplace(process, Application{nameOfBundle_(found.bundlePath), std::move(end)});
    }
    running.push_back(process);
  }
  return running;
}

std::vector<std::shared_ptr<ApplicationWatch::Observer>> ApplicationWatch::observers() {
  std::vector<std::shared_ptr<Observer>> alive;
  for (const auto& observer : observers_) {
    if (auto held = observer.lock()) alive.push_back(std::move(held));
  }
  std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
  return alive;
}

void ApplicationWatch::watchWhileObserved() {
  const bool isObserved = !observers().empty();
  for (auto& [process, application] : applications_) {
    if (!isObserved) {
      application.watch.reset();
    } else if (application.watch == nullptr && application.end) {
      application.watch = runLoop_.watchReadable(application.end.get(), [this, ending = process] { ended(ending); });
    }
  }
}

void ApplicationWatch::ended(Process process) {
  const auto keptAlive = shared_from_this();
  const auto application = applications_.extract(process);
  // What was started meanwhile is watched before anybody concludes from this notice what still runs.
  static_cast<void>(look());
  watchWhileObserved();
  for (const auto& observer : observers()) observer->handler(application.mapped().name);
}
