#include "platform/linux/LinuxAuthorization.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/posix/ChildProcess.h"
#include "platform/posix/Pipe.h"

namespace {

class ToolOutput : public CommunicationsPipe {
 public:
  explicit ToolOutput(FileDescriptor reading) : reading_(std::move(reading)) {}

  std::size_t read(char* bytes, std::size_t size) override {
    std::size_t got = 0;
    while (got < size) {
      const ssize_t length = ::read(reading_.get(), bytes + got, size - got);
      if (length < 0 && errno == EINTR) continue;
      if (length <= 0) break;
      got += static_cast<std::size_t>(length);
    }
    return got;
  }

 private:
  FileDescriptor reading_;
};

class RootAuthorization : public Authorization {
 public:
  explicit RootAuthorization(const SystemTools& tools) : tools_(tools) {}

  bool obtain(std::uint32_t /*flags*/) override { return ::geteuid() == 0; }

  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    const auto command = tools_.resolve(toolPath, arguments);
    auto output = makePipe();
    if (!command || !output) return errAuthorizationToolExecuteFailure;
    if (!spawn({command->executable, command->arguments, output->writing.get()})) {
      return errAuthorizationToolExecuteFailure;
    }
    pipe = std::make_unique<ToolOutput>(std::move(output->reading));
    return launchSucceeded;
  }

  void waitForAnyChild() override {
    while (::wait(nullptr) < 0 && errno == EINTR) {
    }
  }

 private:
  const SystemTools& tools_;
};

}  // namespace

std::unique_ptr<Authorization> LinuxAuthorizations::createAuthorization() {
  return std::make_unique<RootAuthorization>(tools_);
}
