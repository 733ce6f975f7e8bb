// SPDX-License-Identifier: Apache-2.0

#include "install/PrivilegedTools.h"

#include <chrono>
#include <utility>

#include "install/launching/OneLineTasksWithOutput.h"

bool PrivilegedTools::obtain() {
  if (authorization_ != nullptr) return true;
  auto authorization = platform_.authorizations.createAuthorization();
  if (!authorization->obtain(Authorization::extendRights)) return false;
  authorization_ = std::move(authorization);
  return true;
}

void PrivilegedTools::release() { authorization_.reset(); }

Status PrivilegedTools::lockVolume(const std::function<bool()>& waiting) {
  while (lock_ == nullptr) {
    auto lock = platform_.files.tryLock();
    if (lock) {
      lock_ = std::move(*lock);
      break;
    }
    if (!lock.error().is(std::errc::device_or_resource_busy)) return lock.error();
    if (!waiting()) return Error::posix(std::errc::operation_canceled, "");
    platform_.clock.sleepFor(std::chrono::milliseconds(100));
  }
  return {};
}

bool PrivilegedTools::run(const std::string& tool, const std::vector<std::string>& arguments) {
  return mayGoOnAfter(
      OneLineTasksWithOutput::stringByLaunchingPath(tool, arguments, *authorization_, /*wait=*/true).error);
}

bool PrivilegedTools::runWithoutOutput(const std::string& tool, const std::vector<std::string>& arguments) {
  return mayGoOnAfter(OneLineTasksWithOutput::authorizedLaunchPath(tool, arguments, *authorization_, /*wait=*/true));
}

void PrivilegedTools::runIgnoringResult(const std::string& tool, const std::vector<std::string>& arguments) {
  static_cast<void>(OneLineTasksWithOutput::stringByLaunchingPath(tool, arguments, *authorization_, /*wait=*/true));
}

void PrivilegedTools::start(const std::string& tool, const std::vector<std::string>& arguments) {
  static_cast<void>(OneLineTasksWithOutput::stringByLaunchingPath(tool, arguments, *authorization_, /*wait=*/false));
}

bool PrivilegedTools::mayGoOnAfter(const std::optional<Error>& error) {
  if (!error || !isFatalAuthCode(error->code)) return true;
  isDenied_ = true;
  return false;
}

Result<std::unique_ptr<Transaction>> PrivilegedTools::beginTransaction() {
  auto begun = authorization_->beginTransaction();
  if (!begun) static_cast<void>(noteRefusal(begun.error()));
  return begun;
}

bool PrivilegedTools::noteRefusal(const Error& error) {
  const bool isRefusal =
      error.domain == authorizationErrorDomain && isFatalAuthCode(OneLineTasksWithOutput::codeFromStatus(error.code));
  isDenied_ = isDenied_ || isRefusal;
  return isRefusal;
}
