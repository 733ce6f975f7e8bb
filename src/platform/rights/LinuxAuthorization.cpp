// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/LinuxAuthorization.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/files/StagedTransaction.h"
#include "platform/rights/HelperAuthorization.h"
#include "platform/rights/NoOutput.h"

namespace {

class RootAuthorization : public Authorization {
 public:
  RootAuthorization(const Volume& volume, LocalElevation& elevation, const Operations& operations, Log& log,
                    CopyPool::Caller caller)
      : volume_(volume), elevation_(elevation), operations_(operations), log_(log), caller_(caller) {}

  bool obtain(std::uint32_t /*flags*/) override { return true; }

  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    const auto operation = operationFor({toolPath, arguments}, operations_.userName());
    if (!operation) return errAuthorizationToolExecuteFailure;
    if (const Status done = operations_.run(*operation); !done) log_.write(done.error().description());
    pipe = std::make_unique<NoOutput>();
    return launchSucceeded;
  }

  Result<std::unique_ptr<Transaction>> beginTransaction() override {
    if (volume_.heldLock() == nullptr) return Error::posix(std::errc::device_or_resource_busy, volume_.root());
    return StagedTransaction::begin(volume_, elevation_, operations_.ownership(), caller_);
  }

  void waitForAnyChild() override {
    while (::wait(nullptr) < 0 && errno == EINTR) {
    }
  }

 private:
  const Volume& volume_;
  LocalElevation& elevation_;
  const Operations& operations_;
  Log& log_;
  CopyPool::Caller caller_;
};

}  // namespace

LinuxAuthorizations::LinuxAuthorizations(const Volume& volume, const UserAccount& user, Places places,
                                         const std::string& applicationsFolder, HelperSetup setup, Log& log)
    : volume_(volume),
      elevation_(std::move(places)),
      operations_(volume, elevation_, user, applicationsFolder),
      setup_(std::move(setup)),
      log_(log) {}

std::unique_ptr<Authorization> LinuxAuthorizations::createAuthorization() {
  if (::geteuid() != 0) return std::make_unique<HelperAuthorization>(volume_, setup_, log_);
  // The thread that keeps a window alive has no time to copy.
  const auto caller = setup_.surface == Surface::window ? CopyPool::Caller::onlyWaits : CopyPool::Caller::helps;
  return std::make_unique<RootAuthorization>(volume_, elevation_, operations_, log_, caller);
}
