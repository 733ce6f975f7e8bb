// Measures the quiet install against its peers on the same payloads, in one run:
//
//   install-benchmark [FOLDER [ROUNDS]]
//
// FOLDER is where everything is laid out and removed again; in memory (/dev/shm, the default) the figures are those of
// the programs and not of a disk. Each round runs every peer once; what is printed are medians of the rounds, as ratios
// to cp -R and to the floor, in Markdown. Needs root: the install and its peers change owners.

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Measuring.h"

namespace {

void makePackage(const fs::path& source, const fs::path& folder, const fs::path& package) {
  fs::create_directories(folder / "DEBIAN");
  fs::create_directories(folder / "Plug-Ins");
  std::ofstream(folder / "DEBIAN/control") << "Package: bench\nVersion: 1\nArchitecture: all\nMaintainer: bench\n"
                                              "Description: bench\n";
  fs::copy(source, folder / "Plug-Ins/Corvane", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  run({"dpkg-deb", "-Znone", "-b", folder, package});
  fs::remove_all(folder);
}

struct Peer {
  std::string name;
  std::function<Run()> once;
  std::vector<double> times = {};
  long peakKilobytes = 0;
};

/// `isDone` tells after each run whether it did its work.
void measure(const std::string& title, std::vector<Peer> peers, int rounds, const std::function<void()>& cleanUp,
             const std::function<bool()>& isDone) {
  for (int round = 0; round < rounds; ++round) {
    for (Peer& peer : peers) {
      cleanUp();
      const Run result = peer.once();
      if (!isDone()) {
        std::cerr << peer.name << " did not do its work\n";
        std::exit(1);
      }
      peer.times.push_back(result.milliseconds);
      peer.peakKilobytes = std::max(peer.peakKilobytes, result.peakKilobytes);
    }
  }
  cleanUp();
  std::map<std::string, double> medians;
  for (const Peer& peer : peers) medians[peer.name] = median(peer.times);
  const auto ratio = [&](const std::string& name, const std::string& to) {
    std::ostringstream text;
    if (medians.contains(to)) text << std::fixed << std::setprecision(2) << medians[name] / medians[to];
    return text.str();
  };
  std::cout << "\n| " << title << " | ms | to cp -R | to the floor | peak MB |\n|---|---:|---:|---:|---:|\n";
  for (const Peer& peer : peers) {
    std::cout << "| " << peer.name << " | " << std::fixed << std::setprecision(0) << medians[peer.name] << " | "
              << ratio(peer.name, "cp -R") << " | " << ratio(peer.name, "floor") << " | " << std::setprecision(1)
              << static_cast<double>(peer.peakKilobytes) / 1024 << " |\n";
  }
}

std::vector<Peer> peersFor(const fs::path& folder, const fs::path& installer) {
  const fs::path volume = folder / "volume";
  const fs::path target = volume / "Plug-Ins/Corvane";
  const fs::path source = installer.parent_path().parent_path() / "Resources/files/PHOTOSHOP_PLUGINS/Corvane";
  makePackage(source, folder / "package", folder / "bench.deb");
  std::vector<Peer> peers;
  peers.push_back({"cp -R", [=] { return run({"cp", "-R", source, target}); }});
  peers.push_back({"rsync -a", [=] { return run({"rsync", "-a", source.string() + "/", target}); }});
  peers.push_back({"dpkg -i", [=] {
                     fs::remove_all(folder / "dpkg");
                     fs::create_directories(folder / "dpkg/info");
                     fs::create_directories(folder / "dpkg/updates");
                     std::ofstream(folder / "dpkg/status").flush();
                     return run({"dpkg", "--admindir=" + (folder / "dpkg").string(), "--instdir=" + volume.string(),
                                 "--force-script-chrootless", "-i", folder / "bench.deb"});
                   }});
  peers.push_back({"floor", [=] { return run({INSTALL_FLOOR, source, target}); }});
  const std::string script =
      "mkdir -p \"$2\"; for f in \"$1\"/*; do t=\"$2/${f##*/}\"; cp -R \"$f\" \"$t\"; "
      "chown -R 0:80 \"$t\"; chmod -R 0775 \"$t\"; done";
  peers.push_back({"shell script", [=] { return run({"sh", "-c", script, "sh", source, target}); }});
  peers.push_back({"**Installer -quiet**", [=] { return run({installer, "-quiet", "-target", volume}); }});
  return peers;
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = fs::path(argc > 1 ? argv[1] : "/dev/shm") / "installer-benchmark";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
  if (::getuid() != 0 || rounds < 1) {
    std::cerr << "usage, as root: install-benchmark [FOLDER [ROUNDS]]\n";
    return 64;
  }
  ::unsetenv("SUDO_UID");
  const auto cleanUp = [&] {
    fs::remove_all(folder / "volume");
    makeVolume(folder / "volume");
  };

  fs::remove_all(folder);
  fs::create_directories(folder);
  makeBundles(folder / "bundles", 40);
  auto peers = peersFor(folder, makeInstaller(INSTALLER_BUNDLE, folder / "Bundles.app", folder / "bundles"));
  std::erase_if(peers, [](const Peer& peer) { return peer.name == "shell script"; });
  const auto hasItems = [&](std::ptrdiff_t items) {
    return [=] { return std::distance(fs::directory_iterator(folder / "volume/Plug-Ins/Corvane"), {}) == items; };
  };
  measure("40 bundles, 2,400 files, 551 MB", peers, rounds, cleanUp, hasItems(40));
  fs::remove_all(folder / "Bundles.app");

  makeLooseFiles(folder / "loose", 1000);
  peers = peersFor(folder, makeInstaller(INSTALLER_BUNDLE, folder / "Loose.app", folder / "loose"));
  measure("1,000 loose files of 4 KB", peers, rounds, cleanUp, hasItems(1000));

  const fs::path nothing = makeInstaller(INSTALLER_BUNDLE, folder / "Nothing.app", {});
  const fs::path empty = folder / "empty volume";
  fs::create_directories(empty);
  measure(
      "nothing to do",
      {{"**Installer -quiet**",
        [&] {
          return run({nothing, "-quiet", "-target", empty});
        }}},
      rounds, [] {}, [] { return true; });
  fs::remove_all(folder);
}
