// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <dirent.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/FileDescriptor.h"

/// A walk through everything below a folder that can be suspended at any entry. Follows no link, not even one that
/// replaces a folder during the walk. Skips folders that cannot be opened. Only the folders
/// on the way down to the present place are open: a Mac's paths have room for 512 of them.
class FolderWalk {
 public:
  /// Sees an entry: its folder as a path that ends in "/", and its name there. Both last as long as the call.
  using Visit = std::function<void(std::string_view folder, std::string_view name)>;

  /// `path` is what the entries' paths begin with.
  FolderWalk(FileDescriptor folder, std::string path);

  /// Goes on for at most so many entries; false when there are no more. Entries come in no particular order.
  bool goOn(std::size_t entries, const Visit& visit);

 private:
  struct CloseStream {
    void operator()(DIR* stream) const { ::closedir(stream); }
  };
  struct Level {
    std::unique_ptr<DIR, CloseStream> stream;
    std::size_t pathLength;  ///< of the folder's path
    bool isRead = false;
    std::vector<std::string> inner = {};  ///< folders in it that are still to be walked
  };

  void enter(FileDescriptor folder);
  void leaveOrDescend();

  std::string path_;
  std::vector<Level> levels_;
};
