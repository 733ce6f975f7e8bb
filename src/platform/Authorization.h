// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Result.h"
#include "platform/Transaction.h"

/// Result of a privileged launch, in the system's numbering; 0 is success.
using LaunchStatus = std::int32_t;
inline constexpr LaunchStatus launchSucceeded = 0;
inline constexpr LaunchStatus errAuthorizationDenied = -60005;
inline constexpr LaunchStatus errAuthorizationCanceled = -60006;
inline constexpr LaunchStatus errAuthorizationToolExecuteFailure = -60031;

/// Domain of errors whose code is a LaunchStatus.
inline constexpr std::string_view authorizationErrorDomain = "NSOSStatusErrorDomain";

/// The reading end of a launched tool's standard output.
class CommunicationsPipe {
 public:
  CommunicationsPipe() = default;
  CommunicationsPipe(const CommunicationsPipe&) = delete;
  CommunicationsPipe& operator=(const CommunicationsPipe&) = delete;
  virtual ~CommunicationsPipe() = default;

  /// Reads up to `size` bytes. Waits until there are that many or the output has ended. Returns their number, 0 at the
  /// end.
  virtual std::size_t read(char* bytes, std::size_t size) = 0;
};

/// A handle on administrator rights.
class Authorization {
 public:
  /// Flag of obtain(): extends the rights of the user.
  static constexpr std::uint32_t extendRights = 2;

  Authorization() = default;
  Authorization(const Authorization&) = delete;
  Authorization& operator=(const Authorization&) = delete;
  virtual ~Authorization() = default;

  /// Obtains rights without naming any. Returns false when they are not available. The first launch asks the user for a
  /// password, this function does not.
  virtual bool obtain(std::uint32_t flags) = 0;

  /// Starts the tool with administrator rights and its standard output connected to `pipe`. The path is that of a
  /// system tool as a Mac has it; arguments go to the tool as they are, with no shell between, in a clean environment.
  /// Paths among them are those of the target volume, as for FileSystem. Does not wait for the tool to end. `pipe` is
  /// set only when the launch succeeded.
  virtual LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                             std::unique_ptr<CommunicationsPipe>& pipe) = 0;

  /// Begins a transaction on the target volume with these rights, and undoes or removes what an interrupted one left.
  /// The user is asked for a password here or while items are staged. Fails with authorizationErrorDomain when rights
  /// are not available, and with device_or_resource_busy when another process holds the lock of the volume.
  virtual Result<std::unique_ptr<Transaction>> beginTransaction() = 0;

  /// Waits for any child process. Returns at once when there is none.
  virtual void waitForAnyChild() = 0;
};

class Authorizations {
 public:
  Authorizations() = default;
  Authorizations(const Authorizations&) = delete;
  Authorizations& operator=(const Authorizations&) = delete;
  virtual ~Authorizations() = default;

  [[nodiscard]] virtual std::unique_ptr<Authorization> createAuthorization() = 0;
};
