// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperAuthorization.h"

#include <utility>
#include <variant>

#include "platform/rights/HelperTransaction.h"
#include "platform/rights/NoOutput.h"

bool HelperAuthorization::obtain(std::uint32_t flags) {
  return (flags & extendRights) != 0 && !askingCommand(askingMeans(), setup_.surface).empty();
}

LaunchStatus HelperAuthorization::start() {
  if (helper_ != nullptr || failure_ != launchSucceeded) return failure_;
  auto started = startHelper(setup_, askingMeans());
  if (auto* const connection = std::get_if<HelperConnection>(&started)) {
    helper_ = std::make_shared<HelperConnection>(std::move(*connection));
  } else {
    failure_ = std::get<LaunchStatus>(started);
  }
  return failure_;
}

LaunchStatus HelperAuthorization::executeWithPrivileges(const std::string& toolPath,
                                                        const std::vector<std::string>& arguments,
                                                        std::unique_ptr<CommunicationsPipe>& pipe) {
  if (const LaunchStatus status = start(); status != launchSucceeded) return status;
  const Packet reply = helper_->ask({toolPath, arguments});
  if (reply.name != HelperSays::done) return errAuthorizationToolExecuteFailure;
  std::size_t position = 1;
  if (const Status done = takeResult(reply, position); !done) log_.write(done.error().description());
  pipe = std::make_unique<NoOutput>();
  return launchSucceeded;
}

Result<std::unique_ptr<Transaction>> HelperAuthorization::beginTransaction() {
  if (const LaunchStatus status = start(); status != launchSucceeded) {
    return Error{.domain = std::string(authorizationErrorDomain), .code = status};
  }
  const auto lock = volume_.heldLock();
  return HelperTransaction::begin(helper_, lock != nullptr ? lock->get() : -1);
}
