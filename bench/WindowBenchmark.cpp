// SPDX-License-Identifier: Apache-2.0

// Measures the wizard's window, in one run: against a minimal program with a window, its pages, and the install under
// it against the one without a window.
//
//   window-benchmark [FOLDER [ROUNDS]]
//
// FOLDER is where everything is laid out and removed again (/dev/shm is the default). Without a display only the screen
// in memory is measured. The wizard is the real program on a sample volume; a probe of ours in the place of its window
// module loads the real one and sees its events. Needs root: the install changes owners. No application of the names on
// the sample volume may be running.

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <iterator>

#include "Measuring.h"

namespace {

using Figures = std::multimap<std::string, double>;

std::vector<double> allOf(const Figures& figures, const std::string& name) {
  std::vector<double> values;
  const auto [first, last] = figures.equal_range(name);
  std::transform(first, last, std::back_inserter(values), [](const auto& figure) { return figure.second; });
  return values;
}

/// What a program with a window measured of itself, and its peak.
struct Session {
  Figures figures;
  Run run;

  [[nodiscard]] double toFirstPaint() const {
    const std::chrono::duration<double, std::milli> start = run.start.time_since_epoch();
    return figures.find("first-paint")->second - start.count();
  }
};

class Benchmark {
 public:
  Benchmark(fs::path folder, int rounds) : folder_(std::move(folder)), rounds_(rounds) {}

  void measure() {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    layOutSample();
    std::vector<std::string> screens = {"offscreen"};
    if (std::getenv("DISPLAY") != nullptr) screens.emplace_back("xcb");
    for (const std::string& screen : screens) {
      screen_ = screen;
      measureFirstPage();
      measurePages();
    }
    screen_ = "offscreen";
    measureInstall();
    measureLargeBundle();
    fs::remove_all(folder_);
  }

 private:
  /// Takes the window module of the bundle, and puts the probe in its place.
  static void putProbeInto(const fs::path& bundle) {
    const fs::path modules = bundle / "Contents/PlugIns";
    fs::rename(modules / "Window.so", modules / "RealWindow.so");
    fs::copy_file(WINDOW_PROBE, modules / "Window.so");
  }

  void layOutSample() {
    run({MAKE_SAMPLE_VOLUME, sample(), "root", STAND_IN});
    fs::copy(INSTALLER_BUNDLE, folder_ / "Installer.app",
             fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    putProbeInto(folder_ / "Installer.app");
  }

  [[nodiscard]] std::string sample() const { return folder_ / "sample volume"; }

  [[nodiscard]] Session start(const std::vector<std::string>& command, const std::string& mode) const {
    const fs::path results = folder_ / "results";
    fs::remove(results);
    Session session;
    session.run = run(command, {{"BENCH_RESULTS", results}, {"BENCH_MODE", mode}, {"QT_QPA_PLATFORM", screen_}});
    std::ifstream lines(results);
    std::string name;
    for (double value = 0; lines >> name >> value;) session.figures.emplace(name, value);
    return session;
  }

  [[nodiscard]] Session startWizard(const std::string& mode) const {
    return start({folder_ / "Installer.app/Contents/MacOS/Installer", "-target", sample()}, mode);
  }

  void measureFirstPage() const {
    struct Peer {
      std::string name;
      std::function<Session()> once;
      std::vector<double> times = {};
      std::vector<double> peaks = {};
    };
    std::vector<Peer> peers;
    peers.push_back({"minimal program", [this] { return start({MINIMAL_WINDOW, MINIMAL_DESCRIPTION}, ""); }});
    peers.push_back({"**Installer**", [this] { return startWizard("first-page"); }});
    for (int round = 0; round < rounds_; ++round) {
      for (Peer& peer : peers) {
        const Session session = peer.once();
        peer.times.push_back(session.toFirstPaint());
        peer.peaks.push_back(static_cast<double>(session.run.peakKilobytes) / 1024);
      }
    }
    const double time = median(peers.front().times);
    const double peak = median(peers.front().peaks);
    std::cout << "\n| first page painted, " << screen_
              << " | ms | ratio | peak MB | ratio |\n|---|---:|---:|---:|---:|\n";
    for (const Peer& peer : peers) {
      std::cout << std::fixed << "| " << peer.name << " | " << std::setprecision(1) << median(peer.times) << " | "
                << std::setprecision(2) << median(peer.times) / time << " | " << std::setprecision(1)
                << median(peer.peaks) << " | " << std::setprecision(2) << median(peer.peaks) / peak << " |\n";
    }
  }

  /// One walk is many rounds. A host is running, or its page would not stay.
  void measurePages() const {
    const pid_t host = ::fork();
    if (host == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a benchmark that fails leaves it to nobody
      const fs::path program = fs::path(sample()) / "Applications/Adobe Lightroom/Adobe Lightroom.app/Contents/MacOS";
      ::execl((program / "Adobe Lightroom").c_str(), "Adobe Lightroom", nullptr);
      std::_Exit(127);
    }
    const Session walk = startWizard("walk");
    ::kill(host, SIGKILL);
    ::waitpid(host, nullptr, 0);
    const std::vector<double> pages = allOf(walk.figures, "page");
    std::cout << "\nPage to page, " << screen_ << ": " << pages.size() << " times, median " << std::setprecision(1)
              << median(pages) << " ms, longest " << std::ranges::max(pages) << " ms; peak "
              << static_cast<double>(walk.run.peakKilobytes) / 1024 << " MB\n";
  }

  /// Lays out an installer of that name and a volume beside it, and yields the program.
  fs::path layOutInstaller(const std::string& name, const fs::path& payload) const {
    fs::path program = makeInstaller(INSTALLER_BUNDLE, folder_ / name, payload);
    putProbeInto(folder_ / name);
    return program;
  }

  void renewVolume() const {
    fs::remove_all(volume());
    makeVolume(volume());
  }
  [[nodiscard]] std::string volume() const { return folder_ / "volume"; }
  void expectItems(std::ptrdiff_t count) const {
    if (std::distance(fs::directory_iterator(volume() + "/" + installedItems), {}) == count) return;
    std::cerr << "not everything was installed\n";
    std::exit(1);
  }

  void measureInstall() const {
    constexpr int bundles = 20;
    constexpr int files = 200;
    makeBundles(folder_ / "payload", bundles);
    makeLooseFiles(folder_ / "payload", files);
    const fs::path program = layOutInstaller("Payload.app", folder_ / "payload");
    std::vector<double> quiet;
    std::vector<double> window;
    for (int round = 0; round < rounds_; ++round) {
      renewVolume();
      quiet.push_back(run({program, "-quiet", "-target", volume()}).milliseconds);
      expectItems(bundles + files);
      renewVolume();
      window.push_back(start({program, "-target", volume()}, "install").figures.find("install")->second);
      expectItems(bundles + files);
    }
    fs::remove_all(folder_ / "Payload.app");
    std::cout << "\n| 20 bundles of 14 MB, 200 loose files | ms | ratio |\n|---|---:|---:|\n"
              << std::setprecision(0) << "| Installer -quiet, all of it | " << median(quiet) << " | 1.00 |\n"
              << "| **the window, from the click to the last page painted** | " << median(window) << " | "
              << std::setprecision(2) << median(window) / median(quiet) << " |\n";
  }

  void measureLargeBundle() const {
    std::mt19937_64 random(3);
    const fs::path contents = folder_ / "large/Large.plugin/Contents";
    fs::create_directories(contents / "Resources");
    writeFile(contents / "Large", 200'000'000, random);
    for (int i = 0; i < 120; ++i) writeFile(contents / "Resources" / std::to_string(i), 1'000'000, random);
    const fs::path program = layOutInstaller("Large.app", folder_ / "large");
    std::vector<double> turns;
    std::vector<double> gaps;
    std::vector<double> times;
    for (int round = 0; round < rounds_; ++round) {
      renewVolume();
      const Session session = start({program, "-target", volume()}, "watched-install");
      expectItems(1);
      turns.push_back(session.figures.find("longest-turn")->second);
      gaps.push_back(session.figures.find("longest-gap")->second);
      times.push_back(session.figures.find("install")->second);
    }
    std::cout << "\nOne bundle of 320 MB, installed in " << std::setprecision(0) << median(times)
              << " ms: longest time without a turn of the run loop " << std::setprecision(1) << median(turns)
              << " ms (at worst " << std::ranges::max(turns) << "), without a repaint " << median(gaps)
              << " ms (at worst " << std::ranges::max(gaps) << ")\n";
  }

  fs::path folder_;
  int rounds_;
  std::string screen_;
};

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 15;
  if (::getuid() != 0 || rounds < 1) {
    std::cerr << "usage, as root: window-benchmark [FOLDER [ROUNDS]]\n";
    return 64;
  }
  ::unsetenv("SUDO_UID");
  Benchmark(fs::path(argc > 1 ? argv[1] : "/dev/shm") / "window-benchmark", rounds).measure();
}
