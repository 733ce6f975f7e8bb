#include "platform/rights/LinuxAuthorization.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/processes/ChildProcess.h"
#include "platform/processes/Pipe.h"
#include "platform/rights/HelperAuthorization.h"
#include "platform/rights/ToolOutput.h"

namespace {

class RootAuthorization : public Authorization {
 public:
  explicit RootAuthorization(const SystemTools& tools) : tools_(tools) {}

  bool obtain(std::uint32_t /*flags*/) override { return true; }

  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    const auto command = tools_.resolve(toolPath, arguments);
    auto output = makePipe();
    if (!command || !output) return errAuthorizationToolExecuteFailure;
    if (!spawn({.executable = command->executable,
                .arguments = command->arguments,
                .standardOutput = output->writing.get(),
                .folder = command->folder.get()})) {
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
  if (::geteuid() == 0) return std::make_unique<RootAuthorization>(tools_);
  return std::make_unique<HelperAuthorization>(setup_);
}
