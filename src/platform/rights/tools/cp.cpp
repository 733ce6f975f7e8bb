// Stands in for a Mac's cp -R, and keeps what the installer promises: the target is there complete or not at all.
//
//   cp -R SOURCE NAME
//
// The copy is made in the working folder, wherever that has been moved to meanwhile.

#include <fcntl.h>

#include <iostream>
#include <string>
#include <string_view>

#include "platform/files/PosixFileSystem.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/Volume.h"
#include "platform/posix/PosixUser.h"

int main(int argc, char** argv) {
  if (argc != 4 || std::string_view(argv[1]) != "-R") {
    std::cerr << "usage: cp -R SOURCE NAME\n";
    return 64;
  }
  // The working folder is the volume, and the source, which is a path of this system, stands for the bundle.
  const Volume volume(openFolderHandle(AT_FDCWD, ".", /*followLink=*/false), "", argv[2]);
  const PosixUser user(loggedInUser(), preferredLanguages());
  const Status copied = PosixFileSystem(volume, user).copyItem(argv[2], std::string("/") + argv[3]);
  if (!copied) std::cerr << "cp: " << copied.error().description() << '\n';
  return copied ? 0 : 1;
}
