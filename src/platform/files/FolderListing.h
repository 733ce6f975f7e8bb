#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/FileSystem.h"

struct FolderEntry {
  std::string name;
  ItemType type = ItemType::other;
};

/// Entries of the open folder (opened for reading) in ascending byte order of their names, "." and ".." left out. An
/// entry that goes away while it is looked at is left out.
Result<std::vector<FolderEntry>> listFolder(int folder);
