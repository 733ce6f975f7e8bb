// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacAuthorization.h"

#include <Security/Security.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/files/StagedTransaction.h"
#include "platform/macos/MacElevation.h"
#include "platform/macos/MacTools.h"
#include "platform/processes/ChildProcess.h"
#include "platform/processes/Pipe.h"

namespace {

class ToolStream : public CommunicationsPipe {
 public:
  explicit ToolStream(std::FILE* stream) : stream_(stream, &std::fclose) {}

  std::size_t read(char* bytes, std::size_t size) override { return std::fread(bytes, 1, size, stream_.get()); }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_;
};

using Setup = MacAuthorizations::Setup;

/// Starts the system's tools one way or the other.
class ToolAuthorization : public Authorization {
 public:
  explicit ToolAuthorization(const Setup& setup) : setup_(setup) {}

  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    const auto command = resolveTool(toolPath, arguments, setup_.volume);
    if (!command) return errAuthorizationToolExecuteFailure;
    std::FILE* stream = nullptr;
    const LaunchStatus status = start(*command, stream);
    if (status == launchSucceeded && stream != nullptr) pipe = std::make_unique<ToolStream>(stream);
    return status;
  }

  Result<std::unique_ptr<Transaction>> beginTransaction() override {
    if (setup_.volume.heldLock() == nullptr) {
      return Error::posix(std::errc::device_or_resource_busy, setup_.volume.root());
    }
    return StagedTransaction::begin(setup_.volume, elevation(), setup_.ownership, setup_.caller);
  }

  void waitForAnyChild() override {
    while (::wait(nullptr) < 0 && errno == EINTR) {
    }
  }

 protected:
  [[nodiscard]] const Setup& setup() const { return setup_; }

 private:
  virtual LaunchStatus start(const ToolCommand& command, std::FILE*& stream) = 0;
  virtual Elevation& elevation() = 0;

  const Setup& setup_;
};

/// The rights of root are this process's own. The places are what it does for a user, no more.
class RootElevation : public NoElevation {
 public:
  explicit RootElevation(const Places& places) : places_(places) {}

  [[nodiscard]] bool covers(const std::string& resolved) const override { return places_.cover(resolved); }

 private:
  const Places& places_;
};

class RootAuthorization : public ToolAuthorization {
 public:
  explicit RootAuthorization(const Setup& setup) : ToolAuthorization(setup), elevation_(setup.places) {}

  bool obtain(std::uint32_t /*flags*/) override { return true; }

 private:
  LaunchStatus start(const ToolCommand& command, std::FILE*& stream) override {
    auto output = makePipe();
    if (!output) return errAuthorizationToolExecuteFailure;
    stream = ::fdopen(output->reading.get(), "r");
    if (stream == nullptr) return errAuthorizationToolExecuteFailure;
    static_cast<void>(output->reading.release());
    if (spawn({command.executable, command.arguments, output->writing.get()})) return launchSucceeded;
    static_cast<void>(std::fclose(stream));
    return errAuthorizationToolExecuteFailure;
  }

  Elevation& elevation() override { return elevation_; }

  RootElevation elevation_;
};

/// One handle for the whole install: the system asks once and remembers the answer with the handle.
class UserAuthorization : public ToolAuthorization {
 public:
  explicit UserAuthorization(const Setup& setup)
      : ToolAuthorization(setup),
        elevation_(
            [this](const std::string& tool, const auto& arguments) {
              return run({tool, arguments});
            },
            setup.places, setup.user, setup.ownership) {}
  UserAuthorization(const UserAuthorization&) = delete;
  UserAuthorization& operator=(const UserAuthorization&) = delete;
  ~UserAuthorization() override {
    if (handle_ != nullptr) ::AuthorizationFree(handle_, kAuthorizationFlagDestroyRights);
  }

  bool obtain(std::uint32_t flags) override {
    const AuthorizationRights none{0, nullptr};
    return ::AuthorizationCreate(nullptr, nullptr, kAuthorizationFlagDefaults, &handle_) == errAuthorizationSuccess &&
           ::AuthorizationCopyRights(handle_, &none, nullptr, flags, nullptr) == errAuthorizationSuccess;
  }

 private:
  using Execute = OSStatus(AuthorizationRef authorization, const char* tool, AuthorizationFlags options,
                           char* const* arguments, std::FILE** pipe);

  /// Null when the system has it no more. Its header has called it obsolete for long, so it is not linked; the name is
  /// looked up in its own library, because a search through all that is loaded does not always find it.
  static Execute* findExecute() {
    void* const security = ::dlopen("/System/Library/Frameworks/Security.framework/Security", RTLD_LAZY | RTLD_LOCAL);
    if (security == nullptr) return nullptr;
    return reinterpret_cast<Execute*>(::dlsym(security, "AuthorizationExecuteWithPrivileges"));
  }

  LaunchStatus start(const ToolCommand& command, std::FILE*& stream) override {
    // Who has declined is not asked again.
    if (refusal_ != launchSucceeded) return refusal_;
    static Execute* const execute = findExecute();
    if (execute == nullptr) return errAuthorizationToolExecuteFailure;
    std::vector<char*> arguments;
    arguments.reserve(command.arguments.size() + 1);
    for (const std::string& argument : command.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const LaunchStatus status =
        execute(handle_, command.executable.c_str(), kAuthorizationFlagDefaults, arguments.data(), &stream);
    if (status == errAuthorizationDenied || status == errAuthorizationCanceled) refusal_ = status;
    return status;
  }

  LaunchStatus run(const ToolCommand& command) {
    std::FILE* stream = nullptr;
    const LaunchStatus status = start(command, stream);
    if (status != launchSucceeded) return status;
    if (stream != nullptr) {
      ToolStream output(stream);
      std::array<char, 256> nobodyReads{};
      while (output.read(nobodyReads.data(), nobodyReads.size()) > 0) {
      }
    }
    waitForAnyChild();
    return status;
  }

  Elevation& elevation() override { return elevation_; }

  MacElevation elevation_;
  AuthorizationRef handle_ = nullptr;
  LaunchStatus refusal_ = launchSucceeded;
};

}  // namespace

std::unique_ptr<Authorization> MacAuthorizations::createAuthorization() {
  if (::geteuid() == 0) return std::make_unique<RootAuthorization>(setup_);
  return std::make_unique<UserAuthorization>(setup_);
}
