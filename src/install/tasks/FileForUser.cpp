// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/FileForUser.h"

#include "foundation/Exception.h"
#include "foundation/Format.h"
#include "foundation/Path.h"

bool writeFileForUser(Platform& platform, PrivilegedTools& tools, const FileForUser& file, std::string_view content) {
  // Write under another name first, so that the file is always complete.
  const std::string fresh = joinPath(deletingLastPathComponent(file.path), "." + lastPathComponent(file.path) + ".new");
  tools.runIgnoringResult("/bin/rm", {"-fR", fresh});
  tools.runIgnoringResult("/usr/bin/touch", {fresh});
  tools.runIgnoringResult("/usr/sbin/chown", {"-R", tools.ownerText(), fresh});
  tools.runIgnoringResult(file.chmodTool, {"-R", file.mode, fresh});

  // Opening it with the user's own rights shows whether the tools have succeeded.
  const auto opened = platform.files.openForWriting(fresh);
  if (!opened) {
    platform.log.write(file.cannotOpen);
    tools.runIgnoringResult("/bin/rm", {"-fR", fresh});
    return false;
  }
  try {
    (*opened)->writeData(content);
  } catch (const Exception& exception) {
    platform.log.write(formatted(file.cannotWrite, exception.what()));
    tools.runIgnoringResult("/bin/rm", {"-fR", fresh});
    return false;
  }
  const auto present = platform.files.attributesOfItem(file.path);
  if (present && present->type == ItemType::folder) tools.runIgnoringResult("/bin/rm", {"-fR", file.path});
  tools.runIgnoringResult("/bin/mv", {"-f", fresh, file.path});
  if (!platform.files.isTaken(fresh)) return true;
  platform.log.write(file.cannotOpen);
  tools.runIgnoringResult("/bin/rm", {"-fR", fresh});
  return false;
}
