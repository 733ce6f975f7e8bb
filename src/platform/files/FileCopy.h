// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/files/Elevation.h"

/// Attributes of the copy that differ from the source.
struct CopyAttributes {
  std::optional<Ownership> ownership = std::nullopt;  ///< none: inherited from the folder
  mode_t mode = 0;
  bool losesQuarantine = false;
};

/// Amount copied so far, updated by several threads.
struct CopyCount {
  std::atomic<std::uint64_t> bytes = 0;
  std::atomic<std::uint64_t> files = 0;
};

/// 0 or errno values.
struct CopyErrors {
  int content = 0;    ///< why there is no complete copy
  int attribute = 0;  ///< the first attribute that the file system lacks or that this process may not set
};

/// Copies an open regular file, whose status is known, to a free name: content with its holes, modification time,
/// extended attributes. `copied` grows with each piece. After a failure an incomplete copy may be left.
CopyErrors copyFile(int source, const struct stat& status, int targetFolder, const std::string& targetName,
                    const CopyAttributes& attributes, CopyCount& copied);

/// The same for a name in an open folder, which is opened without following a link or waiting for a writer. Anything
/// but a regular file fails with ENOTSUP.
CopyErrors copyFile(int sourceFolder, const std::string& name, int targetFolder, const CopyAttributes& attributes,
                    CopyCount& copied);

/// Copies a link itself, not its target.
CopyErrors copyLink(int sourceFolder, const std::string& sourceName, int targetFolder, const std::string& targetName,
                    const CopyAttributes& attributes);

/// Gives an open copy the attributes of its open source, the ones that changes of its content could undo among them.
CopyErrors copyAttributes(int source, int target, const CopyAttributes& attributes);
