// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/PollRunLoop.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>
#include <vector>

namespace {

/// Milliseconds for poll(2), rounded up so that it does not return before the limit; -1 to wait for ever.
int timeUntil(RunLoop::Clock::time_point limit) {
  if (limit == RunLoop::distantFuture) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - RunLoop::Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, std::numeric_limits<int>::max()));
}

}  // namespace

DescriptorRunLoop::Watch PollRunLoop::watchReadable(int descriptor, std::function<void()> handler) {
  auto source = std::make_shared<Source>(Source{descriptor, std::move(handler)});
  sources_.push_back(source);
  return source;
}

bool PollRunLoop::runBeforeDate(Clock::time_point limit) {
  for (;;) {
    sources_.remove_if([](const std::weak_ptr<Source>& source) { return source.expired(); });
    if (sources_.empty()) return false;
    std::vector<pollfd> polled;
    const std::vector<std::weak_ptr<Source>> sources(sources_.begin(), sources_.end());
    for (const auto& weak : sources) {
      const auto source = weak.lock();
      polled.push_back({source != nullptr ? source->descriptor : -1, POLLIN, 0});
    }
    const int ready = ::poll(polled.data(), static_cast<nfds_t>(polled.size()), timeUntil(limit));
    if (ready < 0 && errno == EINTR) continue;
    for (std::size_t i = 0; ready > 0 && i < polled.size(); ++i) {
      if (polled[i].revents == 0) continue;
      // A handler before this one may have ended the watch.
      if (const auto source = sources[i].lock()) source->handler();
    }
    return true;
  }
}

void PollRunLoop::runUntilDate(Clock::time_point limit) {
  while (runBeforeDate(limit) && Clock::now() < limit) {
  }
}
