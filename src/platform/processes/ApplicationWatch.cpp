#include "platform/processes/ApplicationWatch.h"

#include <algorithm>
#include <cerrno>

#include "platform/files/SystemCalls.h"
#include "platform/processes/ApplicationProcesses.h"
#include "platform/processes/ProcessEnd.h"

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
