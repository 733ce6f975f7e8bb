// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/Executables.h"

#include <unistd.h>

#include "foundation/Path.h"

std::optional<std::string> findExecutable(std::string_view name) {
  for (const std::string_view folder : {"/usr/bin", "/bin", "/usr/sbin", "/sbin"}) {
    std::string path = joinPath(folder, name);
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  return std::nullopt;
}
