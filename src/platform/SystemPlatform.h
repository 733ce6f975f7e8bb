// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

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

  /// Returns the path on this machine for a path of the target volume, for display.
  [[nodiscard]] virtual std::string shownPath(const std::string& path) const = 0;
};

/// Whether the program runs with a window.
enum class Surface { console, window };

/// Domain of the error when no window can be opened.
inline constexpr std::string_view noWindowDomain = "NoWindow";

/// The platform for installing into `target`, a mounted volume or a folder laid out like one ("/" for the running
/// system). Fails when the target cannot be opened, when the program does not lie in a bundle, or with noWindowDomain.
[[nodiscard]] Result<std::unique_ptr<SystemPlatform>> makeSystemPlatform(const std::string& target, Surface surface);

/// The platform for the maker of an installer, without a window: `bundle` is its main bundle, or the program's own when
/// it is empty. Its volume is any folder, or none, where nothing exists but the bundle, when it is empty. Fails when
/// there is no folder at a path.
[[nodiscard]] Result<std::unique_ptr<SystemPlatform>> makePlatformForMaker(const std::string& bundle,
                                                                           const std::string& volume = "");

/// Has a program of the own bundle's Contents/Helpers take the place of this one, with these arguments. Returns only
/// when that is not possible, with the reason.
[[nodiscard]] Error becomeHelper(const std::string& name, const std::vector<std::string>& arguments);
