// SPDX-License-Identifier: Apache-2.0

#include "platform/files/FolderWalk.h"

#include <fcntl.h>

#include <utility>

#include "platform/files/FolderListing.h"

FolderWalk::FolderWalk(FileDescriptor folder, std::string path) : path_(std::move(path)) { enter(std::move(folder)); }

void FolderWalk::enter(FileDescriptor folder) {
  std::unique_ptr<DIR, CloseStream> stream(::fdopendir(folder.get()));
  if (stream == nullptr) return;
  static_cast<void>(folder.release());
  if (!path_.ends_with('/')) path_ += '/';
  levels_.push_back({std::move(stream), path_.size()});
}

bool FolderWalk::goOn(std::size_t entries, const Visit& visit) {
  while (!levels_.empty() && entries > 0) {
    Level& level = levels_.back();
    // A folder that stops in the middle with an error is as one that ends there.
    const dirent* const entry = level.isRead ? nullptr : ::readdir(level.stream.get());
    --entries;  // a folder costs as much as an entry
    if (entry == nullptr) {
      level.isRead = true;
      leaveOrDescend();
      continue;
    }
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    visit(path_, name);
    // Whether an entry of unknown kind is a folder shows when it is opened as one.
    if (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN) level.inner.emplace_back(name);
  }
  return !levels_.empty();
}

void FolderWalk::leaveOrDescend() {
  Level& level = levels_.back();
  path_.resize(level.pathLength);
  if (level.inner.empty()) {
    levels_.pop_back();
    return;
  }
  const std::string name = std::move(level.inner.back());
  level.inner.pop_back();
  FileDescriptor inner(::openat(::dirfd(level.stream.get()), name.c_str(), folderToRead | O_NOFOLLOW));
  if (!inner) return;
  path_ += name;
  enter(std::move(inner));
}
