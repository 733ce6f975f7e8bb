#pragma once

#include <memory>
#include <string>

#include "foundation/Result.h"
#include "platform/Platform.h"

/// Owns the Platform of the machine that the program runs on.
class SystemPlatform {
 public:
  SystemPlatform() = default;
  SystemPlatform(const SystemPlatform&) = delete;
  SystemPlatform& operator=(const SystemPlatform&) = delete;
  virtual ~SystemPlatform() = default;

  [[nodiscard]] virtual Platform& platform() = 0;

  /// Where a path of the target volume lies on this machine, for people to read.
  [[nodiscard]] virtual std::string shownPath(const std::string& path) const = 0;
};

/// The platform for installing into `target`, a mounted volume or a folder laid out like one ("/" for the running
/// system). Fails when the target cannot be entered, or when the program does not lie in a bundle.
[[nodiscard]] Result<std::unique_ptr<SystemPlatform>> makeSystemPlatform(const std::string& target);
