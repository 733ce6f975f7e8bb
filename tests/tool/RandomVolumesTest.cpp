// SPDX-License-Identifier: Apache-2.0

#include <sys/mount.h>
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "foundation/Path.h"
#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"
#include "tool/InstalledPlaces.h"
#include "tool/PlanReport.h"
#include "tool/Remover.h"
#include "tool/VerifyReport.h"
#include "tool/VolumeState.h"

namespace {

/// A payload and a volume made up by chance: with hosts and without, items that are there already, older and newer,
/// files and links where folders should be, folders where files should be, and folders that cannot be written to.
class RandomVolume {
 public:
  RandomVolume(TestMachine& machine, unsigned seed) : machine_(machine), random_(seed) {
    for (const char* const name : {"CS6", "CC 2014", "CC 2019"}) {
      if (chance(70)) machine_.addPhotoshop(std::string("Adobe Photoshop ") + name);
    }
    if (chance(50))
      fs::create_directories(machine_.inLibrary("Application Support/Adobe/Lightroom/External Editor Presets"));
    for (const std::string part :
         {"HD/Applications", "HD/Library/Application Support/Corvane/Dunmore 3", "PHOTOSHOP/Presets",
          "PHOTOSHOP_PLUGINS", "PHOTOSHOP_PLUGINS/Corvane", "LIGHTROOM"}) {
      const int items = number(4);
      for (int i = 0; i < items; ++i) addItem(machine_.payload(part), 0);
    }
  }
  ~RandomVolume() {
    for (const fs::path& mounted : mounted_) ::umount2(mounted.c_str(), MNT_DETACH);
  }
  RandomVolume(const RandomVolume&) = delete;
  RandomVolume& operator=(const RandomVolume&) = delete;

  /// Puts things where the plan wants to install.
  void disturb(const InstallPlan& plan) {
    forEachItem(plan, [this](const PlannedItem& item, const PlannedGroup&) {
      const fs::path target = machine_.onVolume(item.target);
      if (chance(25)) putInPlace(target);
      if (chance(isHarmless_ ? 0 : 4)) obstruct(target.parent_path());
    });
  }

 private:
  bool chance(unsigned percent) { return random_() % 100 < percent; }
  int number(unsigned below) { return static_cast<int>(random_() % below); }
  std::string name(const std::string& extension) { return "Item " + std::to_string(number(30)) + extension; }

  void addItem(const fs::path& folder, int depth) {
    const fs::path file = folder / name(".txt");
    if (chance(40)) {
      makeBundle(folder / name(chance(50) ? ".plugin" : ".app"), {{"CFBundleVersion", std::to_string(number(9))}});
    } else if (depth < 2 && chance(40)) {
      addItem(folder / name(""), depth + 1);
    } else if (!fs::exists(file)) {
      writeFile(file, std::string(static_cast<std::size_t>(number(9000)), 'n'));
      const fs::path link = folder / name(".link");
      if (chance(20) && !fs::is_symlink(link)) fs::create_symlink("Item 1.txt", link);
      if (chance(20)) writeFile(folder / ("." + name("")), "");
    }
  }

  void putInPlace(const fs::path& target) {
    std::error_code ignored;
    fs::create_directories(target.parent_path(), ignored);
    const bool isWritable = ::access(target.parent_path().c_str(), W_OK) == 0;
    if (ignored || !isWritable || fs::exists(fs::symlink_status(target))) return;
    switch (number(4)) {
      case 0: fs::create_symlink("/nowhere", target); break;
      case 1: makeBundle(target, {{"CFBundleVersion", std::to_string(number(20))}}); break;
      case 2: writeFile(target / "folder in the way", "old"); break;
      default:
        writeFile(target, "old");
        fs::last_write_time(target, fs::file_time_type::clock::now() + std::chrono::hours(number(9) - 4));
    }
  }

  void obstruct(const fs::path& folder) {
    const bool isThere = fs::exists(fs::symlink_status(folder));
    if (isThere && std::getenv("INSTALLER_ISOLATED") != nullptr) {
      if (::mount("none", folder.c_str(), "tmpfs", MS_RDONLY, nullptr) == 0) mounted_.push_back(folder);
    } else if (!isThere) {
      std::error_code ignored;
      fs::create_directories(folder.parent_path(), ignored);
      if (ignored) return;
      if (chance(50)) {
        writeFile(folder, "a file in the way");
      } else {
        fs::create_symlink("/nowhere/at/all", folder);
      }
    }
  }

  TestMachine& machine_;
  std::mt19937 random_;
  bool isHarmless_ = chance(30);
  std::vector<fs::path> mounted_;
};

/// Targets, and whether they are installed.
using Outcomes = std::vector<std::pair<std::string, bool>>;

class RandomVolumesTest : public testing::TestWithParam<unsigned> {
 protected:
  [[nodiscard]] InstallPlan plan() {
    return InstallPlanner(machine_.platform, {.isDetailed = true}).plan(HostsModel(machine_.platform).foundHosts());
  }

  TestMachine machine_;
  RandomVolume volume_{machine_, GetParam()};
};

TEST_P(RandomVolumesTest, ThePlanIsWhatHappensAndVerifyAgrees) {
  volume_.disturb(plan());
  const PlanReport report = makePlanReport(machine_.platform);
  Outcomes planned;
  forEachItem(report.plan, [&](const PlannedItem& item, const PlannedGroup&) {
    planned.emplace_back(item.target, item.fate != Fate::kept);
    const bool isThere = fs::exists(fs::symlink_status(machine_.onVolume(item.target)));
    if (item.fate != Fate::kept) {
      EXPECT_EQ(item.fate == Fate::replaced, isThere) << item.target;
    }
  });

  InstallFilesController controller(machine_.platform);
  controller.install(HostsModel(machine_.platform).foundHosts(), /*shouldConfigureLumatraExternalEditors=*/true);
  std::multiset<std::string> installed(controller.installedPaths().begin(), controller.installedPaths().end());
  for (const std::string& path : report.otherFiles) {
    if (path.ends_with(".log")) continue;
    EXPECT_EQ(installed.erase(path), 1U) << path;
  }
  Outcomes happened;
  for (const auto& [target, isPlanned] : planned) {
    const auto found = installed.find(target);
    happened.emplace_back(target, found != installed.end());
    if (found != installed.end()) installed.erase(found);
  }
  EXPECT_EQ(happened, planned);
  EXPECT_TRUE(installed.empty()) << *installed.begin();

  std::set<std::string> inPlace(controller.installedPaths().begin(), controller.installedPaths().end());
  std::set<std::string> wanting;
  for (const ItemDifference& difference : verifyInstall(machine_.platform, /*isOnlyLogged=*/false).differences) {
    std::string place = difference.path;
    while (place.size() > 1 && std::ranges::find(planned, place, &Outcomes::value_type::first) == planned.end()) {
      place = deletingLastPathComponent(place);
    }
    EXPECT_FALSE(inPlace.contains(place)) << difference.path;
    wanting.insert(place);
  }
  bool isComplete = true;
  for (const auto& [target, isPlanned] : planned) {
    isComplete = isComplete && isPlanned;
    // A folder that is installed later brings it, or is itself what is missing.
    const bool isInFolder = std::ranges::any_of(
        planned, [&, &own = target](const auto& other) { return other.first != own && isAtOrBelow(own, other.first); });
    if (!isInFolder) {
      EXPECT_EQ(wanting.contains(target), !inPlace.contains(target)) << target;
    }
  }
  if (!inPlace.empty()) {
    EXPECT_EQ(verifyInstall(machine_.platform, /*isOnlyLogged=*/true).differences.size(), 0U);
  }
  if (isComplete) {
    EXPECT_EQ(makePlanReport(machine_.platform).changes, 0U) << "nothing is left to be done";
  }
}

TEST_P(RandomVolumesTest, RemovalTakesNothingButWhatWasInstalledAndTellsOfTheRest) {
  volume_.disturb(plan());
  const State before = stateOf(machine_.onVolume(""));
  InstallFilesController controller(machine_.platform);
  controller.install(HostsModel(machine_.platform).foundHosts(), /*shouldConfigureLumatraExternalEditors=*/true);
  PrivilegedTools tools(machine_.platform);
  ASSERT_TRUE(tools.obtain());
  ASSERT_TRUE(tools.lockVolume([] { return false; }));
  const RemovalPlan removal = planRemoval(machine_.platform, /*keepsChanged=*/false);
  Paths expected = controller.installedPaths();
  for (const KeptPath& kept : removal.kept) {
    EXPECT_EQ(kept.reason, KeptPath::Reason::empty) << kept.path;
    expected.push_back(kept.path);
  }
  Remover remover(machine_.platform, tools);
  ASSERT_TRUE(remover.begin());
  const RemovalOutcome outcome = remover.remove(removal);
  EXPECT_EQ(outcome.kept, removal.kept);
  for (const std::string& path : controller.installedPaths()) {
    EXPECT_FALSE(machine_.files.isTaken(path)) << path;
  }
  const State after = stateOf(machine_.onVolume(""));
  for (const std::string& path : differences(before, after)) {
    const bool isKnown = std::ranges::any_of(expected, [&](const std::string& known) {
      return isAtOrBelow(path, known) || (after.contains(path) && isAtOrBelow(known, path));
    });
    const bool isOwnFolder = !after.contains(path) && path.find("/Corvane") != std::string::npos;
    if (!isOwnFolder) {
      EXPECT_TRUE(isKnown) << path;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomVolumesTest, testing::Range(1U, 21U));

}  // namespace
