#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"

/// Names in open folders: from where to where.
struct CopyRequest {
  int sourceFolder;
  std::string sourceName;
  int targetFolder;
  std::string targetName;
};

/// Copies one item with everything below it to a name that is free. Content, permission bits, modification times,
/// extended attributes and holes are kept; links are copied as links; an item that is neither file, folder nor link
/// fails with not_supported. A folder's files are copied by at most so many threads, this one among them, which have
/// ended when this returns.
///
/// `copied` grows with the bytes of content that are there.
///
/// On success `lock` holds an exclusive flock(2) on the copy, for as long as it is open (nothing for a link). After a
/// failure the part that was copied is still there, and is the caller's to remove; with file_exists it is not the
/// caller's.
[[nodiscard]] Status copyTree(const CopyRequest& request, unsigned mostThreads, std::atomic<std::uint64_t>& copied,
                              FileDescriptor& lock);

/// Removes the item with everything below it, following no link. Stops at the first thing that cannot be removed.
[[nodiscard]] Status removeTree(int folder, const std::string& name);

/// Whether this process has the rights that removeTree() needs. Looks at every folder in the tree.
[[nodiscard]] bool mayRemoveTree(int folder, const std::string& name);

/// Bytes of content in the item and everything below it; what cannot be read counts as nothing.
[[nodiscard]] std::uint64_t sizeOfTree(int folder, const std::string& name);
