// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What this program reads of a Paths file, in which a Photoshop notes where it lies: two zero-terminated paths, the
/// last of which may run to the end of the file. What follows is the host's own business.
struct PathsFile {
  std::optional<std::string> appFolder = std::nullopt;      ///< nothing when it is not UTF-8
  std::optional<std::string> plugInsFolder = std::nullopt;  ///< nothing when it is not UTF-8
  bool namesPlugInsFolder = false;                          ///< whether the second path is there, readable or not
};

/// Reads any bytes.
[[nodiscard]] PathsFile parsePathsFile(std::string_view data);
