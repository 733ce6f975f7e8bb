// The least that an install of this kind can do: item by item, with the library's copy and two tools started by
// posix_spawn(3), whose output is read and whose environment is empty.
//
//   install-floor SOURCE TARGET

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

void run(std::initializer_list<std::string> command) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  char* const environment[] = {nullptr};
  int ends[2];
  if (::pipe(ends) != 0) std::exit(1);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addclose(&actions, ends[0]);
  pid_t child = 0;
  if (::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environment) != 0) std::exit(1);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  ::wait(nullptr);
  char block[64];
  while (::read(ends[0], block, sizeof block) > 0) {
  }
  ::close(ends[0]);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 64;
  std::filesystem::create_directories(argv[2]);
  const std::string owner = std::to_string(::getuid()) + ":80";
  for (const auto& item : std::filesystem::directory_iterator(argv[1])) {
    const std::filesystem::path target = std::filesystem::path(argv[2]) / item.path().filename();
    std::filesystem::copy(item.path(), target,
                          std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
    run({"/usr/bin/chown", "-R", owner, target.string()});
    run({"/usr/bin/chmod", "-R", "0775", target.string()});
  }
}
