// Stands in for a Mac's xattr: removes one extended attribute from files and folders and all that is in them.
//
//   xattr -dr NAME PATH...
//
// Linux file systems keep such attributes under the prefix "user."; a volume written by a Mac may have the bare name.
// An item that does not have the attribute is as it should be. Links are neither followed nor changed.

#include <dirent.h>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace {

bool succeeded = true;

void complain(const std::string& path) {
  std::fprintf(stderr, "xattr: %s: %s\n", path.c_str(), std::strerror(errno));
  succeeded = false;
}

void remove(int item, const std::string& attribute, const std::string& path) {
  for (const std::string& name : {"user." + attribute, attribute}) {
    if (::fremovexattr(item, name.c_str()) != 0 && errno != ENODATA && errno != ENOTSUP) complain(path);
  }
}

void removeBelow(int parent, const char* name, const std::string& attribute, const std::string& path) {
  const int item = ::openat(parent, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (item < 0) {
    if (errno != ELOOP && errno != ENXIO) complain(path);
    return;
  }
  remove(item, attribute, path);
  DIR* const folder = ::fdopendir(item);
  if (folder == nullptr) {
    ::close(item);
    return;
  }
  while (const dirent* const entry = ::readdir(folder)) {
    const std::string_view entryName = entry->d_name;
    if (entryName == "." || entryName == "..") continue;
    removeBelow(::dirfd(folder), entry->d_name, attribute, path + "/" + entry->d_name);
  }
  ::closedir(folder);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4 || std::string_view(argv[1]) != "-dr") {
    std::fputs("usage: xattr -dr NAME PATH...\n", stderr);
    return 64;
  }
  for (int i = 3; i < argc; ++i) removeBelow(AT_FDCWD, argv[i], argv[2], argv[i]);
  return succeeded ? 0 : 1;
}
