// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include "trials/Trial.h"

namespace {

/// The removal of an installed product, with files of a person's beside the product, in it and in one of its bundles.
class RemovalTrial : public Trial {
 protected:
  void SetUp() override {
    Trial::SetUp();
    if (IsSkipped()) return;
    install();
    for (const auto& entry : fs::directory_iterator(volume_ / sharedBundle_ / "Contents")) {
      if (entry.path() != volume_ / ownFiles_[2]) pieces_[entry.path()] = digestOf(entry.path(), /*withOwners=*/true);
    }
  }

  void install() {
    reset();
    ASSERT_TRUE(claimsSuccess(run(Who::root)));
    for (const std::string& file : ownFiles_) writeFile(volume_ / file, "mine");
  }

  [[nodiscard]] Process startRemoval(Who who, std::vector<std::string> words = {}) const {
    words.insert(words.end(), {bundle_ / "Contents/MacOS/InstallerTool", "remove", "--yes", "--target", volume_});
    return startProgram(who, std::move(words));
  }

  /// Whether all that was not installed is as it was.
  [[nodiscard]] bool hasOwnFiles() const {
    return std::ranges::all_of(ownFiles_, [&](const auto& file) { return readFile(volume_ / file) == "mine"; });
  }

  /// Pieces of the bundle that has somebody's file in it which are neither there as they were nor gone.
  [[nodiscard]] int brokenPieces() const {
    return static_cast<int>(std::ranges::count_if(pieces_, [](const auto& piece) {
      return fs::exists(piece.first) && digestOf(piece.first, true) != piece.second;
    }));
  }

  /// What of the product is still there.
  [[nodiscard]] int remaining() const {
    const auto pieces = std::ranges::count_if(pieces_, [](const auto& piece) { return fs::exists(piece.first); });
    return bundleCount - 1 - othersGone() + static_cast<int>(pieces);
  }

  struct Figures {
    int runs = 0;
    int killed = 0;
    int broken = 0;
    int partly = 0;
    int lost = 0;
    int incomplete = 0;
    int leftovers = 0;
  };

  /// Counts what a killed removal has left, before and after the next one, which is everything that it takes.
  void lookAndGoOn(Figures& figures) {
    const int present = remaining();
    figures.broken += brokenBundles() + brokenPieces();
    figures.partly += present > 0 && present < bundleCount - 1 + static_cast<int>(pieces_.size()) ? 1 : 0;
    const bool hasLog = fs::exists(volume_ / log_);
    const Run next = finish(startRemoval(Who::root));
    const bool isComplete = remaining() == 0 && !fs::exists(volume_ / log_);
    EXPECT_TRUE(isComplete) << next.status << " " << next.output;
    figures.incomplete += isComplete ? 0 : 1;
    figures.lost += hasOwnFiles() ? 0 : 1;
    if (!hasLog) static_cast<void>(run(Who::root));  // a removal of nothing changes nothing
    figures.leftovers += leftovers(volume_);
  }

  Figures kill(Who who, int count, bool wholeGroup) {
    Figures figures;
    const auto begin = std::chrono::steady_clock::now();
    static_cast<void>(finish(startRemoval(who)));
    const std::chrono::duration<double, std::milli> whole = std::chrono::steady_clock::now() - begin;
    for (; figures.runs < count; ++figures.runs) {
      install();
      const Process process = startRemoval(who);
      sleep(random() * whole.count() * 1.1);
      ::kill(wholeGroup ? -process.id : process.id, SIGKILL);
      figures.killed += finish(process).status == -SIGKILL ? 1 : 0;
      if (who == Who::user) waitForHelper();
      lookAndGoOn(figures);
    }
    return figures;
  }

  static void expectWhole(const std::string& title, const Figures& figures) {
    const auto counted = [](int number, const std::string& what) { return std::to_string(number) + " " + what; };
    say(title + ": " + counted(figures.runs, "removals, ") + counted(figures.killed, "of them killed, ") +
        counted(figures.broken, "items incomplete, ") + counted(figures.partly, "times some gone and some not, ") +
        counted(figures.lost, "times a file of others lost, ") +
        counted(figures.incomplete, "times not completed by the next removal, ") +
        counted(figures.leftovers, "staging items left over"));
    EXPECT_GT(figures.killed, 0);
    EXPECT_EQ(figures.broken, 0);
    EXPECT_EQ(figures.lost, 0);
    EXPECT_EQ(figures.incomplete, 0);
    EXPECT_EQ(figures.leftovers, 0);
  }

 private:
  /// Without the bundle that has somebody's file in it, which is not whole to begin with.
  [[nodiscard]] int othersGone() const { return look().gone - (fs::exists(volume_ / sharedBundle_) ? 0 : 1); }
  [[nodiscard]] int brokenBundles() const {
    const State state = look();
    return state.broken - state.gone - (fs::exists(volume_ / sharedBundle_) ? 1 : 0);
  }

  const std::string log_ = "Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const std::string sharedBundle_ = "Applications/Corvane/Filter 0.plugin";
  const std::vector<std::string> ownFiles_ = {"Applications/Other.txt", "Applications/Corvane/Mine.txt",
                                              sharedBundle_ + "/Contents/Mine.txt"};
  std::map<fs::path, std::string> pieces_;
};

TEST_F(RemovalTrial, IsCompletedByTheNextOneWhenItIsKilled) {
  expectWhole("kill, root", kill(Who::root, rounds(40), /*wholeGroup=*/false));
}

TEST_F(RemovalTrial, IsCompletedByTheNextOneWhenAUsersIsKilled) {
  if (!isIsolated()) GTEST_SKIP() << "needs a namespace of its own, see tests/isolated";
  expectWhole("kill, user and helper", kill(Who::user, rounds(20), /*wholeGroup=*/true));
}

TEST_F(RemovalTrial, IsCompletedByTheNextOneWhereverItIsKilled) {
  if (std::system("strace -f -o /dev/null true 2>/dev/null") != 0) GTEST_SKIP() << "strace is not installed";
  Figures figures;
  for (const std::string call : {"renameat2", "unlinkat", "mkdirat", "syncfs", "symlinkat"}) {
    for (int when = 1;; when += std::max(1, 20 / rounds(2))) {
      install();
      const std::string inject = "inject=" + call + ":signal=KILL:when=" + std::to_string(when);
      if (finish(startRemoval(Who::root, {"strace", "-f", "-o", "/dev/null", "-e", inject})).status != -SIGKILL) break;
      ++figures.runs;
      ++figures.killed;
      lookAndGoOn(figures);
    }
  }
  expectWhole("kill at each change", figures);
  EXPECT_GT(figures.partly, 0);
}

}  // namespace
