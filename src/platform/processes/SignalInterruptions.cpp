// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/SignalInterruptions.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/processes/Pipe.h"

namespace {

constexpr std::array endSignals = {SIGINT, SIGTERM, SIGHUP};

// What a signal handler may touch.
std::atomic<int> firstSignal = 0;
std::atomic<int> wakeUpPipe = -1;

void handle(int signal) {
  const int error = errno;
  SignalInterruptions::note(signal);
  errno = error;
}

}  // namespace

SignalInterruptions::SignalInterruptions() {
  firstSignal = 0;
  if (auto pipe = makePipe()) {
    ::fcntl(pipe->writing.get(), F_SETFL, O_NONBLOCK);
    reading_ = std::move(pipe->reading);
    wakeUpPipe = pipe->writing.release();
  }
  struct sigaction action {};
  action.sa_handler = handle;
  action.sa_flags = SA_RESTART;  // waits for events end all the same
  for (const int signal : endSignals) {
    struct sigaction before {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr);
  }
}

SignalInterruptions::~SignalInterruptions() {
  for (const int signal : endSignals) {
    struct sigaction now {};
    ::sigaction(signal, nullptr, &now);
    if (now.sa_handler == handle) static_cast<void>(std::signal(signal, SIG_DFL));
  }
  const FileDescriptor closed(wakeUpPipe.exchange(-1));
}

void SignalInterruptions::note(int signal) {
  int none = 0;
  firstSignal.compare_exchange_strong(none, signal);
  const ssize_t written = ::write(wakeUpPipe, "", 1);
  static_cast<void>(written);  // a full pipe wakes the run loop, too
}

std::optional<int> SignalInterruptions::requested() const {
  const int signal = firstSignal;
  return signal == 0 ? std::nullopt : std::optional(signal);
}

Interruptions::Observation SignalInterruptions::observe(std::function<void()> handler) {
  if (runLoop_ == nullptr || !reading_) return nullptr;
  return runLoop_->watchReadable(reading_.get(), [this, called = std::move(handler)] {
    std::array<char, 64> bytes{};
    if (::read(reading_.get(), bytes.data(), bytes.size()) > 0) called();
  });
}
