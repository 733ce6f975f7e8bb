// SPDX-License-Identifier: Apache-2.0

// Measures what the progress of an install is weighted by: how long each step takes for different payloads.
//
//   progress-benchmark [FOLDER [ROUNDS]]
//
// FOLDER is where everything is laid out and removed again (/dev/shm is the default). What is printed are medians of
// the rounds, in Markdown: the time of each step, as a share of the whole. Needs root.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <iomanip>
#include <iostream>
#include <numeric>

#include "Measuring.h"
#include "platform/files/StagedTransaction.h"

namespace {

class PatientObserver : public TransactionObserver {
 public:
  void willStage(std::size_t /*item*/) override {}
  bool didStage(std::size_t /*item*/, const ItemResult& result) override { return static_cast<bool>(result.status); }
  bool whileBusy(const CopiedAmount& /*copied*/) override { return true; }
};

/// Copying, flushing, giving the items their places, flushing and removing the old items; ms.
using Steps = std::array<double, 4>;

void check(bool isDone) {
  if (isDone) return;
  std::cerr << "an install failed\n";
  std::exit(1);
}

Steps install(const fs::path& folder) {
  const Volume volume(folder / "volume", folder / "Installer.app");
  std::vector<std::string> paths;
  for (const auto& entry : fs::directory_iterator(folder / "Installer.app")) paths.push_back(entry.path().filename());
  std::vector<std::array<std::string, 2>> texts;
  for (const std::string& name : paths) texts.push_back({folder / "Installer.app" / name, "/Library/Items/" + name});
  std::vector<TransactionItem> items;
  for (const auto& [source, target] : texts) items.push_back({source, target});
  std::vector<std::size_t> numbers(items.size());
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});

  NoElevation elevation;
  PatientObserver observer;
  Steps steps{};
  auto begun = StagedTransaction::begin(volume, elevation, {0, 0}, CopyPool::Caller::onlyWaits);
  check(static_cast<bool>(begun));
  Transaction& transaction = **begun;
  auto last = std::chrono::steady_clock::now();
  const auto note = [&](std::size_t step) {
    const auto now = std::chrono::steady_clock::now();
    steps[step] = std::chrono::duration<double, std::milli>(now - last).count();
    last = now;
  };
  check(static_cast<bool>(transaction.stage(items, observer)));
  note(0);
  check(static_cast<bool>(transaction.flush(observer)));
  note(1);
  for (const Status& result : transaction.commit(numbers)) check(static_cast<bool>(result));
  note(2);
  check(static_cast<bool>(transaction.flush(observer)) && transaction.finish(observer).empty());
  note(3);
  return steps;
}

}  // namespace

int main(int argc, char** argv) {
  const fs::path folder = fs::path(argc > 1 ? argv[1] : "/dev/shm") / "installer-benchmark";
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  if (::getuid() != 0 || rounds < 1) {
    std::cerr << "usage, as root: progress-benchmark [FOLDER [ROUNDS]]\n";
    return 64;
  }
  const std::vector<std::pair<std::string, std::function<void(const fs::path&)>>> payloads = {
      {"15 bundles, 900 files, 207 MB", [](const fs::path& place) { makeBundles(place, 15); }},
      {"1,000 loose files of 4 KB", [](const fs::path& place) { makeLooseFiles(place, 1000); }},
      {"one bundle of 20,000 small files", [](const fs::path& place) { makeSmallBundles(place, 1, 20'000); }},
  };
  std::cout
      << "| payload | ms | copying | flushing | places | flushing and cleaning up |\n|---|---:|---:|---:|---:|---:|\n"
      << std::fixed;
  for (const auto& [title, make] : payloads) {
    fs::remove_all(folder);
    make(folder / "Installer.app");
    std::array<std::vector<double>, 4> times;
    std::vector<double> wholes;
    for (int round = 0; round < rounds; ++round) {
      fs::remove_all(folder / "volume");
      fs::create_directories(folder / "volume/Library/Items");
      ::sync();
      for (int install_ = 0; install_ < 2; ++install_) {  // the second one replaces the items
        const Steps steps = install(folder);
        for (std::size_t i = 0; i < steps.size(); ++i) times[i].push_back(steps[i]);
        wholes.push_back(std::accumulate(steps.begin(), steps.end(), 0.0));
      }
    }
    const double whole = median(wholes);
    std::cout << "| " << title << " | " << std::setprecision(0) << whole;
    for (const auto& step : times) std::cout << " | " << 100 * median(step) / whole << " %";
    std::cout << " |" << std::endl;
  }
  fs::remove_all(folder);
}
