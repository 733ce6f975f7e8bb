// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/FileSystem.h"

/// The folder that a person chooses in a panel, and what may be chosen. The path is kept as it was typed, picked or
/// remembered: it may be a link, or hidden, or not there yet.
class FolderChoice {
 public:
  /// Why a path cannot be chosen.
  enum class Problem { none, noPath, missing, notAFolder, package, unreadable };

  /// `isLet` may refuse folders.
  FolderChoice(const FileSystem& files, std::function<bool(const std::string& path)> isLet)
      : files_(files), isLet_(std::move(isLet)) {}

  [[nodiscard]] const std::string& path() const { return path_; }
  void setPath(std::string path) { path_ = std::move(path); }
  /// Takes the path that the text names: absolute, without "." and "..", which never lead above the volume.
  void setTyped(std::string_view text);

  [[nodiscard]] Problem problem() const;
  /// The folders to show in the folder: no files, links, packages, hidden or refused folders.
  [[nodiscard]] std::vector<std::string> foldersIn(const std::string& folder) const;

 private:
  [[nodiscard]] bool isLet(const std::string& path) const { return isLet_ == nullptr || isLet_(path); }
  [[nodiscard]] bool isPackage(const std::string& path) const;

  const FileSystem& files_;
  std::function<bool(const std::string& path)> isLet_;
  std::string path_;
};

/// "/", then each name of the path from the top, for a tree that follows it.
[[nodiscard]] std::vector<std::string> pathsDownTo(std::string_view path);
