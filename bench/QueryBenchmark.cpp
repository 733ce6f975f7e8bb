// SPDX-License-Identifier: Apache-2.0

// Measures the search for earlier installs against find(1) on the same tree, in one run:
//
//   query-benchmark [FOLDER [ROUNDS]]
//
// FOLDER is where the tree of 200,000 entries is laid out and removed again (/dev/shm is the default). Each round runs
// both once; what is printed are medians of the rounds, as a ratio to find, in Markdown.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/processes/FolderQuery.h"
#include "platform/processes/PollRunLoop.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* searchedName = "Dunmore 3.plugin";

/// 20 folders of 10 of 10, with what is left of 200,000 entries as files in them; the name is in 50 places.
void makeTree(const fs::path& root) {
  std::size_t entries = 0;
  for (int i = 0; i < 2000; ++i) {
    const fs::path folder = root / ("Host " + std::to_string(i % 20)) / ("Plug-Ins " + std::to_string(i / 20 % 10)) /
                            ("Filters of the maker " + std::to_string(i / 200));
    fs::create_directories(folder);
    if (i % 40 == 0) fs::create_directories(folder / searchedName);
  }
  entries = static_cast<std::size_t>(std::distance(fs::recursive_directory_iterator(root), {}));
  for (std::size_t i = 0; entries + i < 200'000; ++i) {
    const std::size_t place = i % 2000;
    std::ofstream(root / ("Host " + std::to_string(place % 20)) / ("Plug-Ins " + std::to_string(place / 20 % 10)) /
                  ("Filters of the maker " + std::to_string(place / 200)) / ("Resource " + std::to_string(i) + ".png"));
  }
}

/// How many find lists; -1 when it fails.
std::ptrdiff_t runFind(const fs::path& root, const fs::path& output) {
  const std::string path = root;
  std::string find = "find";
  std::string option = "-name";
  std::string name = searchedName;
  std::string folder = path;
  char* const arguments[] = {find.data(), folder.data(), option.data(), name.data(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, "find", &actions, nullptr, arguments, environ);
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (error != 0 || ::waitpid(child, &status, 0) != child || status != 0) return -1;
  std::ifstream lines(output);
  return std::count(std::istreambuf_iterator(lines), {}, '\n');
}

std::ptrdiff_t runQuery(MetadataQuery& query, RunLoop& runLoop, double& longestTurn) {
  const Value name(searchedName);
  query.setPredicate(Predicate::parse("(kMDItemFSName LIKE %@)", {&name, 1}));
  query.setSearchScopes({"/"});
  if (!query.startQuery()) return -1;
  while (query.isGathering()) {
    const auto start = RunLoop::Clock::now();
    runLoop.runBeforeDate(start);
    longestTurn =
        std::max(longestTurn, std::chrono::duration<double, std::milli>(RunLoop::Clock::now() - start).count());
  }
  return static_cast<std::ptrdiff_t>(query.resultCount());
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = fs::path(argc > 1 ? argv[1] : "/dev/shm") / "query-benchmark";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
  if (rounds < 1) {
    std::cerr << "usage: query-benchmark [FOLDER [ROUNDS]]\n";
    return 64;
  }
  fs::remove_all(folder);
  const fs::path root = folder / "volume";
  makeTree(root);
  const auto entries = std::distance(fs::recursive_directory_iterator(root), {});

  const Volume volume(fs::canonical(root).string(), "/nowhere/Installer.app");
  PollRunLoop runLoop;
  FolderQueries queries(volume, runLoop);
  const auto query = queries.makeQuery();
  std::vector<double> findTimes;
  std::vector<double> queryTimes;
  double longestTurn = 0;
  for (int round = 0; round < rounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    const std::ptrdiff_t listed = runFind(root, folder / "found");
    const auto middle = std::chrono::steady_clock::now();
    const std::ptrdiff_t found = runQuery(*query, runLoop, longestTurn);
    const auto end = std::chrono::steady_clock::now();
    if (listed != 50 || found != 50) {
      std::cerr << "find lists " << listed << ", the query " << found << ", of 50\n";
      return 1;
    }
    findTimes.push_back(std::chrono::duration<double, std::milli>(middle - start).count());
    queryTimes.push_back(std::chrono::duration<double, std::milli>(end - middle).count());
  }
  fs::remove_all(folder);
  const double find = median(findTimes);
  const double own = median(queryTimes);
  std::cout << std::fixed << "| one name among " << entries << " entries | ms | to find |\n|---|---:|---:|\n"
            << std::setprecision(0) << "| find FOLDER -name NAME | " << find << " | 1.00 |\n| **metadata query** | "
            << own << " | " << std::setprecision(2) << own / find << " |\n\nlongest run of the loop: " << longestTurn
            << " ms\n";
}
