#include "foundation/Exception.h"
#include "foundation/Format.h"
#include "install/InstallFilesController.h"

bool InstallFilesController::writeFileForUser(const FileForUser& file, std::string_view text) {
  // Whether the tools did their work shows when the file is opened, with the user's own rights.
  runToolIgnoringResult("/usr/bin/touch", {file.path});
  runToolIgnoringResult("/usr/sbin/chown", {"-R", ownerText(), file.path});
  runToolIgnoringResult(file.chmodTool, {"-R", file.mode, file.path});

  const auto opened = platform_.files.openForWriting(file.path);
  if (!opened) {
    platform_.log.write(file.cannotOpen);
    return false;
  }
  try {
    (*opened)->writeData(text);
    return true;
  } catch (const Exception& exception) {
    platform_.log.write(formatted(file.cannotWrite, exception.what()));
    return false;
  }
}
