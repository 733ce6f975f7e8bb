// SPDX-License-Identifier: Apache-2.0

// Discovery of hosts in folders of 10,000 entries, beside the mere listing of the same folders.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "foundation/NotificationCenter.h"
#include "hosts/HostsModel.h"
#include "platform/linux/LinuxPlatform.h"

namespace {

namespace fs = std::filesystem;

/// A volume whose Preferences and Application Support/Adobe hold 10,000 files each, two of them of Photoshops.
class LargeVolume {
 public:
  LargeVolume() : root_(fs::temp_directory_path() / "discovery-benchmark") {
    fs::remove_all(root_);
    const fs::path library = root_ / "Users/someone/Library";
    fs::create_directories(root_ / "Applications/Adobe Photoshop CS6/Adobe Photoshop CS6.app");
    for (const char* const name : {"Preferences", "Application Support/Adobe"}) {
      fs::create_directories(library / name);
      for (int i = 0; i < 9999; ++i) {
        std::ofstream(library / name / ("com.example.application" + std::to_string(i) + ".plist")).flush();
      }
      constexpr char paths[] = "/Applications/Adobe Photoshop CS6\0/Plug-Ins";
      std::ofstream(library / name / "Adobe Photoshop CS6 Paths", std::ios::binary).write(paths, sizeof paths);
    }
  }
  ~LargeVolume() { fs::remove_all(root_); }
  LargeVolume(const LargeVolume&) = delete;
  LargeVolume& operator=(const LargeVolume&) = delete;

  [[nodiscard]] const fs::path& root() const { return root_; }

 private:
  fs::path root_;
};

class SilentLog : public Log {
 public:
  void write(std::string_view /*message*/) override {}
};

struct Machine {
  LargeVolume volume;
  LinuxPlatform system{Volume(volume.root(), "/nowhere/Installer.app"),
                       "/nowhere/Installer.app",
                       {0, 0, "someone", "/"},
                       [](const WindowServices&) { return std::make_unique<ConsoleInterface>(); }};
  SilentLog log;
  Platform platform = [&] {
    const Platform& real = system.platform();
    return Platform{real.files,     real.bundles, real.folders,       real.preferences,    real.authorizations,
                    real.tasks,     real.runLoop, real.notifications, real.launchServices, real.metadataQueries,
                    real.workspace, real.toolkit, real.processor,     real.identifiers,    log,
                    real.user,      real.clock,   real.interruptions};
  }();
};

Machine& machine() {
  static Machine instance;
  return instance;
}

void listFolders(benchmark::State& state) {
  const Platform& platform = machine().platform;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(platform.files.contentsOfDirectory("/Users/someone/Library/Preferences"));
    benchmark::DoNotOptimize(platform.files.contentsOfDirectory("/Users/someone/Library/Application Support/Adobe"));
  }
}
BENCHMARK(listFolders)->Unit(benchmark::kMillisecond);

void discoverHosts(benchmark::State& state) {
  while (state.KeepRunning()) {
    const HostsModel model(machine().platform);
    if (model.foundHosts().size() != 2) state.SkipWithError("the hosts were not found");
  }
}
BENCHMARK(discoverHosts)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
