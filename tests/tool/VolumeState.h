// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <string>

#include "support/TestMachine.h"

using State = std::map<std::string, std::string>;

/// Everything on a volume, but for the database of applications, with mode, owner and content.
inline State stateOf(const fs::path& volume) {
  State state;
  for (auto entry = fs::recursive_directory_iterator(volume); entry != fs::recursive_directory_iterator(); ++entry) {
    if (entry->path().filename() == ".local") {
      entry.disable_recursion_pending();
      continue;
    }
    const fs::path& path = entry->path();
    const std::string content = entry->is_symlink()     ? "-> " + fs::read_symlink(path).string()
                                : entry->is_directory() ? ""
                                                        : readFile(path);
    state[path.string().substr(volume.string().size())] = modeOf(path) + " " + content;
  }
  return state;
}

/// Paths that only one of the two has, or that differ.
inline Paths differences(const State& one, const State& other) {
  Paths paths;
  for (const auto& [path, content] : one) {
    const auto found = other.find(path);
    if (found == other.end() || found->second != content) paths.push_back(path);
  }
  for (const auto& [path, content] : other) {
    if (!one.contains(path)) paths.push_back(path);
  }
  return paths;
}
