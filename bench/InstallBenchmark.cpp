// Measures the quiet install against its peers on the same payloads, in one run:
//
//   install-benchmark [FOLDER [ROUNDS]]
//
// FOLDER is where everything is laid out and removed again; in memory (/dev/shm, the default) the figures are those of
// the programs and not of a disk. Each round runs every peer once; what is printed are medians of the rounds, as ratios
// to cp -R and to the floor, in Markdown. Needs root: the install and its peers change owners.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Run {
  double milliseconds = 0;
  long peakKilobytes = 0;
};

Run run(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::execvp(arguments[0], arguments.data());
    std::_Exit(127);
  }
  int status = 0;
  rusage usage{};
  ::wait4(child, &status, 0, &usage);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::cerr << "failed with " << status << ": " << command[0] << '\n';
    std::exit(1);
  }
  return {time.count(), usage.ru_maxrss};
}

void writeFile(const fs::path& path, std::size_t size, std::mt19937_64& random) {
  // In small blocks: the most that this process ever used is passed on to its children's figures.
  std::array<std::uint64_t, 4096> words{};
  std::ofstream file(path, std::ios::binary);
  while (size > 0) {
    for (auto& word : words) word = random();
    const std::size_t block = std::min(size, sizeof words);
    file.write(reinterpret_cast<const char*>(words.data()), static_cast<std::streamsize>(block));
    size -= block;
  }
}

/// 40 bundles of 60 files, 551 MB in all: each one program of 8 MB and many resources.
void makeBundles(const fs::path& folder) {
  std::mt19937_64 random(1);
  for (int bundle = 0; bundle < 40; ++bundle) {
    const fs::path contents = folder / ("Filter " + std::to_string(bundle) + ".plugin") / "Contents";
    const std::vector<fs::path> places = {contents / "Resources", contents / "Resources/en.lproj",
                                          contents / "Resources/Presets"};
    fs::create_directories(contents / "MacOS");
    for (const fs::path& place : places) fs::create_directories(place);
    constexpr std::size_t program = std::size_t{8} << 20U;
    writeFile(contents / "MacOS/Filter", program, random);
    for (std::size_t i = 0; i < 59; ++i) {
      constexpr std::size_t average = (551'000'000 / 40 - program) / 59;
      const std::size_t size = average / 5 + random() % (average * 8 / 5);
      writeFile(places[i % places.size()] / ("resource " + std::to_string(i)), size, random);
    }
  }
}

void makeLooseFiles(const fs::path& folder) {
  std::mt19937_64 random(2);
  fs::create_directories(folder);
  for (int i = 0; i < 1000; ++i) writeFile(folder / ("preset " + std::to_string(i)), 4096, random);
}

/// The installer with another payload: what a maker does to the bundle.
fs::path makeInstaller(const fs::path& folder, const fs::path& payload) {
  fs::copy(INSTALLER_BUNDLE, folder, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  const fs::path files = folder / "Contents/Resources/files";
  fs::remove_all(files);
  fs::create_directories(files / "HD");
  if (!payload.empty()) {
    fs::create_directories(files / "PHOTOSHOP_PLUGINS");
    fs::rename(payload, files / "PHOTOSHOP_PLUGINS/Corvane");
  }
  return folder / "Contents/MacOS/Installer";
}

/// A volume with one Photoshop, whose plug-ins go to "/Plug-Ins/Corvane".
void makeVolume(const fs::path& volume) {
  fs::create_directories(volume / "Applications/Adobe Photoshop CS6/Adobe Photoshop CS6.app");
  fs::create_directories(volume / "Library/Application Support");
  fs::create_directories(volume / "Plug-Ins");
  const fs::path preferences = volume / "Users/root/Library/Preferences";
  fs::create_directories(preferences);
  constexpr char paths[] = "/Applications/Adobe Photoshop CS6\0/Plug-Ins";
  std::ofstream(preferences / "Adobe Photoshop CS6 Paths", std::ios::binary).write(paths, sizeof paths);
}

void makePackage(const fs::path& source, const fs::path& folder, const fs::path& package) {
  fs::create_directories(folder / "DEBIAN");
  fs::create_directories(folder / "Plug-Ins");
  std::ofstream(folder / "DEBIAN/control") << "Package: bench\nVersion: 1\nArchitecture: all\nMaintainer: bench\n"
                                              "Description: bench\n";
  fs::copy(source, folder / "Plug-Ins/Corvane", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  run({"dpkg-deb", "-Znone", "-b", folder, package});
  fs::remove_all(folder);
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
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
  makeBundles(folder / "bundles");
  auto peers = peersFor(folder, makeInstaller(folder / "Bundles.app", folder / "bundles"));
  std::erase_if(peers, [](const Peer& peer) { return peer.name == "shell script"; });
  const auto hasItems = [&](std::ptrdiff_t items) {
    return [=] { return std::distance(fs::directory_iterator(folder / "volume/Plug-Ins/Corvane"), {}) == items; };
  };
  measure("40 bundles, 2,400 files, 551 MB", peers, rounds, cleanUp, hasItems(40));
  fs::remove_all(folder / "Bundles.app");

  makeLooseFiles(folder / "loose");
  peers = peersFor(folder, makeInstaller(folder / "Loose.app", folder / "loose"));
  measure("1,000 loose files of 4 KB", peers, rounds, cleanUp, hasItems(1000));

  const fs::path nothing = makeInstaller(folder / "Nothing.app", {});
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
