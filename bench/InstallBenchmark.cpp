// SPDX-License-Identifier: Apache-2.0

// Measures the quiet install against `cp -R` followed by `sync -f`, on the same payloads, in one run:
//
//   tests/isolated build-bench/bench/install-benchmark [ROUNDS]
//
// Everything is laid out in memory, where the figures are those of the programs and not of a disk, and on xfs, which
// can share blocks, in a file in memory. Each round runs both once, one after the other; what is printed are medians of
// the rounds, in Markdown. Needs root; the rows of a user need the account that tests/isolated makes.

#include <grp.h>
#include <pwd.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "Measuring.h"

namespace {

constexpr const char* userName = "installer-trial";

struct Scenario {
  std::string title;
  std::function<void(const fs::path& folder)> makePayload;
  bool isByUser = false;
  bool isOnXfs = false;
};

struct Figures {
  double copying = 0;     ///< ms
  double installing = 0;  ///< ms
  double ratio = 0;       ///< median of the rounds' ratios
  long peakKilobytes = 0;
};

/// Runs the command as the user, without a terminal.
std::vector<std::string> asUser(std::vector<std::string> command) {
  command.insert(command.begin(), {"setpriv", std::string("--reuid=") + userName, std::string("--regid=") + userName,
                                   "--init-groups", "--reset-env", "--"});
  return command;
}

Figures measure(const Scenario& scenario, const fs::path& folder, int rounds) {
  const fs::path payload = folder / "payload";
  fs::remove_all(payload);
  scenario.makePayload(payload);
  const fs::path program = makeInstaller(INSTALLER_BUNDLE, folder / "Measured.app", payload);
  const fs::path source = folder / "Measured.app/Contents/Resources/files/PHOTOSHOP_PLUGINS/Corvane";
  const fs::path volume = folder / "volume";
  const auto items = std::distance(fs::directory_iterator(source), {});
  std::vector<double> copying;
  std::vector<double> installing;
  std::vector<double> ratios;
  Figures figures;
  for (int round = 0; round < rounds; ++round) {
    const fs::path copies = folder / "copies";
    fs::remove_all(copies);
    fs::create_directories(copies);
    const std::string copy =
        "cp -R '" + source.string() + "' '" + copies.string() + "' && sync -f '" + copies.string() + "'";
    copying.push_back(run({"sh", "-c", copy}).milliseconds);
    fs::remove_all(copies);

    fs::remove_all(volume);
    makeVolume(volume, scenario.isByUser ? userName : "root");
    std::vector<std::string> install = {program, "-quiet", "-target", volume};
    if (scenario.isByUser) install = asUser(std::move(install));
    const Run installed = run(install);
    installing.push_back(installed.milliseconds);
    figures.peakKilobytes = std::max(figures.peakKilobytes, installed.peakKilobytes);
    ratios.push_back(installing.back() / copying.back());
    if (std::distance(fs::directory_iterator(volume / installedItems), {}) != items) {
      std::cerr << scenario.title << ": not all items were installed\n";
      std::exit(1);
    }
  }
  fs::remove_all(folder / "Measured.app");
  fs::remove_all(volume);
  figures.copying = median(copying);
  figures.installing = median(installing);
  figures.ratio = median(ratios);
  return figures;
}

/// Mounts xfs with shared blocks from a file in memory; false where that cannot be had.
bool mountXfs(const fs::path& folder) {
  fs::create_directories(folder);
  const std::string image = "'" + folder.string() + ".img'";
  const std::string make = "truncate -s 2G " + image + " && mkfs.xfs -q -m reflink=1 " + image + " && mount -o loop " +
                           image + " '" + folder.string() + "'";
  return std::system((make + " 2>/dev/null").c_str()) == 0 && ::chmod(folder.c_str(), 0755) == 0;
}

void measureNothing(const fs::path& folder, int rounds) {
  const fs::path program = makeInstaller(INSTALLER_BUNDLE, folder / "Nothing.app", {});
  const fs::path volume = folder / "empty";
  fs::create_directories(volume / "Applications");
  fs::create_directories(volume / "Library");
  std::vector<double> times;
  for (int round = 0; round < 3 * rounds; ++round) {
    times.push_back(run({program, "-quiet", "-target", volume}).milliseconds);
  }
  std::cout << "\nNothing to install: " << std::setprecision(1) << median(times) << " ms\n";
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 11;
  if (::getuid() != 0 || rounds < 1) {
    std::cerr << "usage, as root: install-benchmark [ROUNDS]\n";
    return 64;
  }
  ::unsetenv("SUDO_UID");
  const auto bundles = [](const fs::path& folder) { makeBundles(folder, 15); };
  const std::vector<Scenario> scenarios = {
      {"1,000 loose files of 4 KB", [](const fs::path& folder) { makeLooseFiles(folder, 1000); }},
      {"the same by a user", [](const fs::path& folder) { makeLooseFiles(folder, 1000); }, /*isByUser=*/true},
      {"5,000 loose files of 4 KB", [](const fs::path& folder) { makeLooseFiles(folder, 5000); }},
      {"15 bundles, 900 files, 207 MB", bundles},
      {"1,000 bundles of 10 small files", [](const fs::path& folder) { makeSmallBundles(folder, 1000, 10); }},
      {"one bundle of 20,000 small files", [](const fs::path& folder) { makeSmallBundles(folder, 1, 20'000); }},
      {"15 bundles, 207 MB, on xfs", bundles, /*isByUser=*/false, /*isOnXfs=*/true},
  };
  const fs::path memory = "/dev/shm/installer-benchmark";
  fs::remove_all(memory);
  fs::create_directories(memory);
  ::chmod(memory.c_str(), 0755);
  const bool hasXfs = mountXfs(memory / "xfs");
  const bool hasUser = ::getpwnam(userName) != nullptr;
  std::cout
      << "| payload | cp -R and sync -f, ms | Installer -quiet, ms | ratio | peak MB |\n|---|---:|---:|---:|---:|\n";
  for (const Scenario& scenario : scenarios) {
    std::cout << "| " << scenario.title << " | ";
    if ((scenario.isByUser && !hasUser) || (scenario.isOnXfs && !hasXfs)) {
      std::cout << "not measured | | | |\n";
      continue;
    }
    const Figures figures = measure(scenario, scenario.isOnXfs ? memory / "xfs" : memory, rounds);
    std::cout << std::fixed << std::setprecision(1) << figures.copying << " | " << figures.installing << " | "
              << std::setprecision(2) << figures.ratio << " | " << std::setprecision(1)
              << static_cast<double>(figures.peakKilobytes) / 1024 << " |" << std::endl;
  }
  measureNothing(memory, rounds);
  if (hasXfs) ::umount2((memory / "xfs").c_str(), MNT_DETACH);
  fs::remove_all(memory);
}
