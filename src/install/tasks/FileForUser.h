// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// A file that is made with the install's rights and belongs to the user.
struct FileForUser {
  std::string path;
  std::string chmodTool;
  std::string mode;              ///< in octal
  std::string_view cannotOpen;   ///< line for the log
  std::string_view cannotWrite;  ///< format for the log, of the reason
};

/// Makes the file with this content, or gives the one that is there this content, in one step. Returns whether the
/// content is there; why not is in the log. The folder must exist.
bool writeFileForUser(Platform& platform, PrivilegedTools& tools, const FileForUser& file, std::string_view content);
