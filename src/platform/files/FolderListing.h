// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <fcntl.h>

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/FileSystem.h"

/// Flags of open(2) for a folder whose entries are read. A link to a folder is followed unless O_NOFOLLOW is added.
inline constexpr int folderToRead = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/// Target of the symbolic link `name` in the open folder; nothing when the item is not a link.
[[nodiscard]] std::optional<std::string> readLink(int folder, const std::string& name);

struct FolderEntry {
  std::string name;
  ItemType type = ItemType::other;
};

enum class Order { byName, asListed };

/// Entries of the open folder (opened for reading) in ascending byte order of their names, or as the file system lists
/// them; "." and ".." left out. An entry that goes away while it is looked at is left out.
Result<std::vector<FolderEntry>> listFolder(int folder, Order order = Order::byName);
