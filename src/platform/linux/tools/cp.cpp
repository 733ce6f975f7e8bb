// Stands in for a Mac's cp -R, and keeps what the installer promises: the target is there complete or not at all.
//
//   cp -R SOURCE TARGET

#include <iostream>
#include <string>
#include <string_view>

#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixUser.h"
#include "platform/posix/Volume.h"

int main(int argc, char** argv) {
  if (argc != 4 || std::string_view(argv[1]) != "-R") {
    std::cerr << "usage: cp -R SOURCE TARGET\n";
    return 64;
  }
  // Both paths are those of this system: the volume is all of it, and no part of it is a bundle of ours.
  const Volume volume("/", "");
  const PosixUser user(loggedInUser(), preferredLanguages());
  const Status copied = PosixFileSystem(volume, user).copyItem(argv[2], argv[3]);
  if (!copied) std::cerr << "cp: " << copied.error().description() << '\n';
  return copied ? 0 : 1;
}
