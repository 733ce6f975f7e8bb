// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/ProcessSetUp.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>

#include "foundation/Path.h"

void setUpProcess() {
  // A standard descriptor that came closed would be given to the next file that is opened. Writing to an output that
  // came closed fails.
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
  // Nobody reading our output, or a limit on the size of files, is an error like any other and not the end of an
  // install.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  ::umask(022);
}

std::optional<std::string> realPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  if (real == nullptr) return std::nullopt;
  return std::string(real.get());
}

std::optional<std::string> bundleOfOwnProgram(const std::string& program) {
  const auto real = realPath(program);
  if (!real) return std::nullopt;
  const std::string folder = deletingLastPathComponent(*real);
  const std::string contents = deletingLastPathComponent(folder);
  if (lastPathComponent(folder) != "MacOS" || lastPathComponent(contents) != "Contents") return std::nullopt;
  return deletingLastPathComponent(contents);
}

Error becomeProgram(const std::string& path, const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {path};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  static_cast<void>(std::signal(SIGPIPE, SIG_DFL));  // what this process ignores, the program would ignore, too
  static_cast<void>(std::signal(SIGXFSZ, SIG_DFL));
  ::execv(path.c_str(), pointers.data());
  return Error::posix(static_cast<std::errc>(errno), path);
}
