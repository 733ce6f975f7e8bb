// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/PosixUser.h"

/// Where the logged-in user's own programs run.
class UserSession {
 public:
  /// `helpersFolder` holds the installer's own tools, on this system.
  UserSession(const PosixUser& user, std::string helpersFolder)
      : user_(user), helpersFolder_(std::move(helpersFolder)) {}

  /// Starts the program of this system as the logged-in user, without the rights that this process may have, in a
  /// session of its own, with that user's home and display and nothing else of our environment. It is not a child
  /// of this process, so waiting for any child does not find it. Returns a descriptor for the process. Fails when it
  /// cannot be started.
  [[nodiscard]] Result<FileDescriptor> start(const std::string& program,
                                             const std::vector<std::string>& arguments) const;

 private:
  [[nodiscard]] std::vector<std::string> identity() const;
  [[nodiscard]] std::vector<std::string> environment() const;

  const PosixUser& user_;
  std::string helpersFolder_;
};
