// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "install/InstallPlan.h"
#include "platform/Platform.h"

/// A line of the log of installed paths.
struct LoggedPath {
  enum class Origin {
    place,      ///< a place that the installer installs into on this volume now
    elsewhere,  ///< ends like an item of the payload: in a folder that a person picked, or of a host that has gone
    ownFile,    ///< a file that the installer writes itself
    unknown,    ///< nothing that this installer could have put there
  };
  std::string path;
  Origin origin = Origin::unknown;
  std::optional<PlannedItem> item = std::nullopt;  ///< what is installed there, of the first two
};

/// The log of installed paths. Whoever can write the log could have changed it: a line counts for no more than what it
/// is recognised as.
class LoggedPaths {
 public:
  explicit LoggedPaths(Platform& platform);

  [[nodiscard]] const std::string& logPath() const { return logPath_; }
  /// Nothing when there is a log, and it can be read.
  [[nodiscard]] const std::optional<Error>& problem() const { return problem_; }
  /// In the order of the log; each path once.
  [[nodiscard]] const std::vector<LoggedPath>& paths() const { return paths_; }

 private:
  class Recognition;

  std::string logPath_;
  std::optional<Error> problem_;
  std::vector<LoggedPath> paths_;
};

/// Whether the path starts at the root and has no component that is empty, "." or "..".
[[nodiscard]] bool isPlainPath(std::string_view path);
