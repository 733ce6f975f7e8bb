// Stands in for a Mac's chmod -R where root hands items over, and does less than the system's: it follows no link,
// whatever is put in an item's place meanwhile, and leaves alone what does not belong to the user.
//
//   chmod USER MODE PATH
//
// USER is a number, MODE three octal digits with or without a zero before them.

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>

#include "platform/rights/OwnItems.h"

int main(int argc, char** argv) {
  constexpr int octal = 8;
  constexpr unsigned long permissions = 0777;
  const unsigned long mode = argc == 4 ? std::strtoul(argv[2], nullptr, octal) : permissions + 1;
  if (mode > permissions) {
    std::fputs("usage: chmod USER MODE PATH\n", stderr);
    return 64;
  }
  const auto user = static_cast<uid_t>(std::strtoul(argv[1], nullptr, 10));
  const Status done = setModeOfOwnItems(AT_FDCWD, argv[3], user, static_cast<mode_t>(mode));
  if (!done) std::fprintf(stderr, "chmod: %s\n", done.error().description().c_str());
  return done ? 0 : 1;
}
