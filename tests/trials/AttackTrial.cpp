// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "trials/Trial.h"

namespace {

/// Somebody who may change the volume exchanges its folders for links while root, or the helper, works on it.
class LinkTrial : public Trial {
 protected:
  void SetUp() override {
    Trial::SetUp();
    if (IsSkipped()) return;
    reset(other_);
    writeFile(outside_ / "Corvane/Filter 0.plugin/Contents/precious", "precious");
    writeFile(outside_ / "precious", "precious");
    before_ = digestOf(outside_, true) + digestOf(other_, true);
  }

  /// Exchanges the folder for a link, and back, until told to stop.
  static void exchange(const fs::path& folder, const fs::path& target, const std::atomic<bool>& isOver) {
    const fs::path aside = folder.string() + " aside";
    while (!isOver) {
      if (::rename(folder.c_str(), aside.c_str()) != 0) continue;
      static_cast<void>(::symlink(target.c_str(), folder.c_str()));
      ::usleep(300);
      ::unlink(folder.c_str());
      static_cast<void>(::rename(aside.c_str(), folder.c_str()));
      ::usleep(300);
    }
  }

  void attack(const std::string& title, const fs::path& folder, const fs::path& target) {
    int installed = 0;
    const int count = rounds(30);
    for (int i = 0; i < count; ++i) {
      reset();
      std::atomic<bool> isOver = false;
      const FileDescriptor volume(::open(volume_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
      std::thread attacker([&] {
        // From when the installer has opened the volume, and holds its lock.
        while (!isOver && ::flock(volume.get(), LOCK_EX | LOCK_NB) == 0) ::flock(volume.get(), LOCK_UN);
        exchange(folder, target, isOver);
      });
      const Run result = run(isIsolated() && i % 2 == 1 ? Who::user : Who::root);
      waitForHelper();
      isOver = true;
      attacker.join();
      installed += claimsSuccess(result) ? 1 : 0;
    }
    say(title + ": " + std::to_string(count) + " runs, " + std::to_string(installed) +
        " succeeded; nothing outside the volume was changed");
    EXPECT_EQ(digestOf(outside_, true) + digestOf(other_, true), before_) << title;
  }

  const fs::path outside_ = folder_.path() / "outside";
  const fs::path other_ = folder_.path() / "other volume";
  std::string before_;
};

TEST_F(LinkTrial, LeadsNowhereElse) {
  attack("target folder for a link", volume_ / "Applications/Corvane", outside_ / "Corvane");
  attack("volume for a link", volume_, other_);
  attack("Library for a link", volume_ / "Library", outside_);
}

}  // namespace
