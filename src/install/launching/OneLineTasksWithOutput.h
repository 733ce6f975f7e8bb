// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Result.h"
#include "platform/Platform.h"

/// Runs system tools, each in one call that is synchronous for the caller. Tool paths are absolute; an argument reaches
/// the tool as it is, with no shell between. There are no time-outs.
namespace OneLineTasksWithOutput {

/// Domain of every error from here.
inline constexpr std::string_view errorDomain = "com.apple.NSTask.OneLineTasksWithOutput";

// Codes of launches without rights; a privileged launch that fails gives its status, reduced to 16 bits.
inline constexpr std::int32_t launchRaised = -1;        ///< the reason is the localized description
inline constexpr std::int32_t wroteStandardError = -2;  ///< the text is under standardErrorKey

inline constexpr std::string_view standardErrorKey = "standardError";

/// The code of an error for a launch status: its low 16 bits, read as a signed number, such as 5530 for a cancelled
/// prompt.
[[nodiscard]] std::int32_t codeFromStatus(LaunchStatus status);

struct LaunchResult {
  std::optional<std::string> output;  ///< text as the tool wrote it; nothing when the launch failed
  std::optional<Error> error;
};

/// Launch without rights; the run loop goes on while the tool runs. A tool that writes to its standard error gives both
/// its output and an error.
[[nodiscard]] LaunchResult stringByLaunchingPath(Platform& platform, const std::string& path,
                                                 const std::vector<std::string>& arguments);

/// Launch with administrator rights. Only the launch can fail: a tool that starts and then goes wrong is a success, and
/// whoever needs to know whether it did its work looks at the disk. The first 64 bytes of the output are not returned.
[[nodiscard]] LaunchResult stringByLaunchingPath(const std::string& path, const std::vector<std::string>& arguments,
                                                 Authorization& authorization, bool wait);

/// The same without the output.
[[nodiscard]] std::optional<Error> authorizedLaunchPath(const std::string& path,
                                                        const std::vector<std::string>& arguments,
                                                        Authorization& authorization, bool wait);

}  // namespace OneLineTasksWithOutput
