// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/PosixTasks.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "foundation/Exception.h"
#include "platform/files/SystemCalls.h"
#include "platform/processes/ChildProcess.h"
#include "platform/processes/Pipe.h"
#include "platform/processes/ProcessEnd.h"

namespace {

class PipeHandle : public FileHandle {
 public:
  PipeHandle(DescriptorRunLoop& runLoop, NotificationCenter& notifications)
      : runLoop_(runLoop), notifications_(notifications) {}

  void setPipe(FileDescriptor reading) {
    reading_ = std::move(reading);
    if (isWanted_) startWatching();
  }

  void waitForDataInBackgroundAndNotify() override {
    isWanted_ = true;
    if (reading_) startWatching();
  }

  std::string availableData() override {
    std::array<char, 65536> block{};
    for (;;) {
      const ssize_t length = ::read(reading_.get(), block.data(), block.size());
      if (length >= 0) return {block.data(), static_cast<std::size_t>(length)};
      if (errno != EINTR) throw Exception(systemError(errno, "pipe").description());
    }
  }

  /// Posts what would be posted by the next run of the loop. Once is enough: a pipe holds no more than one read takes.
  void deliverWaitingData() {
    pollfd polled{reading_.get(), POLLIN, 0};
    if (isWanted_ && ::poll(&polled, 1, 0) > 0) notify();
  }

 private:
  void startWatching() {
    if (watch_ == nullptr) watch_ = runLoop_.watchReadable(reading_.get(), [this] { notify(); });
  }

  void notify() {
    isWanted_ = false;
    // Once only: the observer asks again when it wants more, from in here or later.
    const auto ended = std::exchange(watch_, nullptr);
    notifications_.post({std::string(fileHandleDataAvailableNotification), this});
  }

  DescriptorRunLoop& runLoop_;
  NotificationCenter& notifications_;
  FileDescriptor reading_;
  bool isWanted_ = false;
  DescriptorRunLoop::Watch watch_;
};

class PosixTask : public Task {
 public:
  PosixTask(DescriptorRunLoop& runLoop, NotificationCenter& notifications, std::string path,
            std::vector<std::string> arguments)
      : runLoop_(runLoop),
        notifications_(notifications),
        path_(std::move(path)),
        arguments_(std::move(arguments)),
        output_(runLoop, notifications),
        error_(runLoop, notifications) {}

  [[nodiscard]] FileHandle& standardOutput() override { return output_; }
  [[nodiscard]] FileHandle& standardError() override { return error_; }

  void launch() override {
    auto output = makePipe();
    auto error = makePipe();
    if (!output || !error) throw Exception("no pipe for the tool's output");
    const auto process = spawn({path_, arguments_, output->writing.get(), error->writing.get()});
    if (!process) throw Exception(process.error().description());
    process_ = *process;
    output_.setPipe(std::move(output->reading));
    error_.setPipe(std::move(error->reading));
    end_ = processEndDescriptor(process_);
    if (!end_) throw Exception("the tool cannot be watched: " + systemError(errno, path_).description());
    watch_ = runLoop_.watchReadable(end_.get(), [this] { terminated(); });
  }

 private:
  void terminated() {
    watch_.reset();
    static_cast<void>(::waitpid(process_, nullptr, 0));  // a launch with rights may have reaped it already
    // What the tool wrote before it ended comes before the news of its end.
    output_.deliverWaitingData();
    error_.deliverWaitingData();
    notifications_.post({std::string(taskDidTerminateNotification), this});
  }

  DescriptorRunLoop& runLoop_;
  NotificationCenter& notifications_;
  std::string path_;
  std::vector<std::string> arguments_;
  PipeHandle output_;
  PipeHandle error_;
  pid_t process_ = 0;
  FileDescriptor end_;
  DescriptorRunLoop::Watch watch_;
};

}  // namespace

std::unique_ptr<Task> PosixTasks::makeTask(const std::string& path, const std::vector<std::string>& arguments) {
  return std::make_unique<PosixTask>(runLoop_, notifications_, path, arguments);
}
