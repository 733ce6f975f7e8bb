// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/Platform.h"

/// The rights of one install: the authorization for privileged changes, and the lock of the volume.
class PrivilegedTools {
 public:
  explicit PrivilegedTools(Platform& platform) : platform_(platform) {}

  /// Obtains administrator rights unless they are held. Returns false when they are not available. Everything below
  /// needs them.
  [[nodiscard]] bool obtain();
  void release();

  /// Whether a change was refused its rights, or the user cancelled.
  [[nodiscard]] bool isDenied() const { return isDenied_; }
  void clearDenied() { isDenied_ = false; }

  /// Waits until no other installer changes the volume. `waiting` is called every tenth of a second while one does, and
  /// ends the wait by returning false. Fails with operation_canceled then.
  Status lockVolume(const std::function<bool()>& waiting);
  void unlockVolume() { lock_.reset(); }
  [[nodiscard]] bool isVolumeLocked() const { return lock_ != nullptr; }

  /// Whether the code of a failed launch means that rights are not available.
  [[nodiscard]] static bool isFatalAuthCode(std::int32_t code) { return code >= 5530 && code <= 5540; }

  // Run a tool and wait for it. Return false when rights are not available, as isDenied() does then. Check the disk for
  // what the tool did.
  bool run(const std::string& tool, const std::vector<std::string>& arguments);
  bool runWithoutOutput(const std::string& tool, const std::vector<std::string>& arguments);
  void runIgnoringResult(const std::string& tool, const std::vector<std::string>& arguments);
  /// Starts a tool without waiting for it.
  void start(const std::string& tool, const std::vector<std::string>& arguments);

  /// Begins a transaction on the volume, which must be locked. A refusal shows in isDenied(), too.
  Result<std::unique_ptr<Transaction>> beginTransaction();
  /// Whether the error means that rights are not available. Records it.
  bool noteRefusal(const Error& error);

  /// "USER:admin", as chown wants it.
  [[nodiscard]] std::string ownerText() const { return platform_.user.shortName() + ":admin"; }

 private:
  [[nodiscard]] bool mayGoOnAfter(const std::optional<Error>& error);

  Platform& platform_;
  std::unique_ptr<Authorization> authorization_;
  std::unique_ptr<VolumeLock> lock_;
  bool isDenied_ = false;
};
