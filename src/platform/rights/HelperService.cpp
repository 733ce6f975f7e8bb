#include "platform/rights/HelperService.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>

namespace {

/// More at a time are not started; the installer waits for nearly every one.
constexpr std::size_t mostRunning = 32;

/// Readable when a child process has ended; the signal itself is held back from now on.
FileDescriptor childSignals() {
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, SIGCHLD);
  ::sigprocmask(SIG_SETMASK, &signals, nullptr);
  return FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

bool isPipe(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

void releaseSignals() {
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

bool HelperService::serve() {
  ends_ = childSignals();
  if (!ends_ || !socket_.send(HelperSays::ready)) return false;
  for (;;) {
    const bool mayStart = running_.size() < mostRunning;
    std::array<pollfd, 2> polled = {pollfd{ends_.get(), POLLIN, 0}, pollfd{socket_.descriptor(), 0, 0}};
    if (mayStart) polled[1].events = POLLIN;
    if (::poll(polled.data(), polled.size(), -1) < 0) continue;
    if (polled[0].revents != 0 && !reportEnded()) return true;
    if (polled[1].revents == 0) continue;
    if ((polled[1].revents & POLLIN) == 0) return true;
    Message message = socket_.receive();
    if (message.kind == Message::Kind::end) return true;
    if (message.kind == Message::Kind::broken) return false;
    const auto state = reader_.add(message.bytes);
    if (state == RequestReader::State::broken) return false;
    if (state == RequestReader::State::unfinished && message.descriptor) return false;
    if (state == RequestReader::State::complete && !answer(std::move(message.descriptor))) return false;
  }
}

bool HelperService::answer(FileDescriptor output) {
  if (!isPipe(output.get())) return false;
  const auto operation = operationFor(reader_.request(), userName_);
  const bool isStarted = operation && work_.canStart(*operation) && start(*operation, output);
  return socket_.send(isStarted ? HelperSays::started : HelperSays::refused);
}

bool HelperService::start(const Operation& operation, const FileDescriptor& output) {
  const pid_t process = ::fork();
  if (process == 0) {
    // Without the connection: the helper's end must not be hidden by a tool that still runs.
    socket_.close();
    ends_.close();
    releaseSignals();
    if (::dup2(output.get(), STDOUT_FILENO) < 0) std::_Exit(EXIT_FAILURE);
    std::_Exit(work_.run(operation));
  }
  if (process > 0) running_[process] = ++started_;
  return process > 0;
}

bool HelperService::reportEnded() {
  signalfd_siginfo info{};
  while (::read(ends_.get(), &info, sizeof info) > 0) {
  }
  for (pid_t process = 0; (process = ::waitpid(-1, nullptr, WNOHANG)) > 0; running_.erase(process)) {
    if (!socket_.send(std::string(HelperSays::ended) + std::to_string(running_[process]))) return false;
  }
  return true;
}
