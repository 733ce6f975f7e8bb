// SPDX-License-Identifier: Apache-2.0

#include "platform/window/FolderChoice.h"

#include <algorithm>
#include <system_error>

#include "foundation/Path.h"
#include "foundation/Text.h"

void FolderChoice::setTyped(std::string_view text) {
  path_.clear();
  const std::string_view typed = trimmed(text);
  if (!typed.starts_with('/')) return;
  path_ = "/";
  for (const std::string_view name : split(typed, '/')) {
    if (name == "..") {
      path_ = deletingLastPathComponent(path_);
    } else if (name != ".") {
      path_ = joinPath(path_, name);
    }
    if (path_.empty()) path_ = "/";
  }
}

FolderChoice::Problem FolderChoice::problem() const {
  if (!path_.starts_with('/')) return Problem::noPath;
  if (!files_.exists(path_)) return Problem::missing;
  const std::vector<std::string> way = pathsDownTo(path_);
  if (std::ranges::any_of(way, [this](const std::string& path) { return isPackage(path); })) return Problem::package;
  const auto content = files_.contentsOfDirectory(path_);
  if (!content) return content.error().is(std::errc::not_a_directory) ? Problem::notAFolder : Problem::unreadable;
  // A link is none of the folders that a caller has a say about.
  const auto attributes = files_.attributesOfItem(path_);
  const bool isFolder = attributes && attributes->type == ItemType::folder;
  return isFolder && !isLet(path_) ? Problem::package : Problem::none;
}

bool FolderChoice::isPackage(const std::string& path) const {
  if (path == "/") return false;
  const auto neighbours = files_.visibleEntries(deletingLastPathComponent(path));
  return std::ranges::any_of(neighbours, [&](const WalkedItem& item) { return item.isPackage && item.path == path; }) ||
         files_.exists(joinPath(path, "Contents/Info.plist"));
}

std::vector<std::string> FolderChoice::foldersIn(const std::string& folder) const {
  std::vector<std::string> folders;
  for (const WalkedItem& entry : files_.visibleEntries(folder)) {
    const bool isFolder = entry.type == ItemType::folder && !entry.isPackage;
    if (isFolder && isLet(entry.path)) folders.push_back(entry.path);
  }
  return folders;
}

std::vector<std::string> pathsDownTo(std::string_view path) {
  std::vector<std::string> paths = {"/"};
  for (const std::string_view name : split(path, '/')) {
    if (!name.empty()) paths.push_back(joinPath(paths.back(), name));
  }
  return paths;
}
