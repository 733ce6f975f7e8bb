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

  /// Gets hold of administrator rights, unless they are held already; false when they cannot be had. Everything below
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

  /// Whether the code of a failed launch means that there are no rights to be had.
  [[nodiscard]] static bool isFatalAuthCode(std::int32_t code) { return code >= 5530 && code <= 5540; }

  // Run a tool and wait for it. False when there are no rights to be had, which isDenied() then tells, too. Whether the
  // tool did its work shows on the disk.
  bool run(const std::string& tool, const std::vector<std::string>& arguments);
  bool runWithoutOutput(const std::string& tool, const std::vector<std::string>& arguments);
  void runIgnoringResult(const std::string& tool, const std::vector<std::string>& arguments);
  /// Starts a tool that nobody waits for.
  void start(const std::string& tool, const std::vector<std::string>& arguments);

  /// Begins a transaction on the volume, which must be locked. A refusal shows in isDenied(), too.
  Result<std::unique_ptr<Transaction>> beginTransaction();
  /// Whether the error means that there are no rights to be had. Notes it.
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
