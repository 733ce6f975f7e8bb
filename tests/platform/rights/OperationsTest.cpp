// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/rights/HelperElevation.h"
#include "support/HelperProcess.h"

namespace {

/// Privileged changes. Both ways do the same.
class OperationsTest : public HelperTest, public testing::WithParamInterface<Way> {
 protected:
  /// Makes the change. Returns why it could not be made, or "refused" when there is no such change.
  std::string change(const std::string& tool, const std::vector<std::string>& arguments) {
    if (GetParam() == Way::byHelper) return run(tool, arguments);
    const auto operation = operationFor({tool, arguments}, "nobody");
    if (!operation) return "refused";
    const Status done = operations_.run(*operation);
    return done ? "" : done.error().reason();
  }
  [[nodiscard]] std::string state(const std::string& path) const { return ownerOf(on(path)) + " " + modeOf(on(path)); }

  const UserAccount user_{nobody, nobody, "nobody", "/"};
  RootElevation elevation_{Places(machine_.volume(), "/Users/nobody", nobody)};
  Operations operations_{machine_.volume(), elevation_, user_, "/Users/nobody/.local/share/applications"};
};

TEST_P(OperationsTest, BehaveLikeTheToolsOfAMac) {
  const std::string support = "/Library/Application Support/Corvane";
  const std::string deep = support + "/a b/$(touch c)";
  fs::create_directory_symlink("Library/Application Support", on("/link"));
  EXPECT_EQ(change("/bin/mkdir", {"-m775", "-p", "/link/Corvane/a b/$(touch c)"}), "");
  EXPECT_EQ(state(deep), handedOver_ + " 775");
  EXPECT_EQ(change("/bin/mkdir", {"-m775", "-p", deep}), "") << "it is there already";

  EXPECT_EQ(change("/usr/bin/touch", {deep + "/file"}), "");
  EXPECT_EQ(change("/usr/sbin/chown", {"-R", owner_, deep + "/file"}), "");
  EXPECT_EQ(ownerOf(on(deep + "/file")), handedOver_);
  writeFile(on(deep + "/file"), "content");
  EXPECT_EQ(change("/usr/bin/touch", {deep + "/file"}), "");
  EXPECT_EQ(readFile(on(deep + "/file")), "content");
  EXPECT_EQ(change("/usr/sbin/chmod", {"-R", "0644", deep + "/file"}), "");
  EXPECT_EQ(modeOf(on(deep + "/file")), "644");
  writeFile(on(deep + "/other"), "replaced");
  EXPECT_EQ(change("/bin/mv", {"-f", deep + "/file", deep + "/other"}), "");
  EXPECT_EQ(readFile(on(deep + "/other")), "content");
  EXPECT_EQ(namesIn(on(deep)), "other");

  EXPECT_EQ(change("/bin/rm", {"-fR", support, deep + "/none"}), "");
  EXPECT_EQ(namesIn(on("/Library/Application Support")), "");
  EXPECT_EQ(change("/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/"
                   "Versions/A/Support/lsregister",
                   {"-apps"}),
            "")
      << "nothing was ever registered";
}

TEST_P(OperationsTest, ChangeOnlyItemsOfTheUserAndFollowNoLink) {
  const std::string app = "/Applications/X.app";
  makeBundle(on(app), {});
  writeFile(on("/outside"), "");
  writeFile(on(app + "/roots/file"), "");
  ::chmod(on("/outside").c_str(), 0600);
  setOwner(on("/outside"), nobody, nobody);
  fs::create_symlink("../../outside", on(app + "/Contents/link"));
  const Paths items = {app, app + "/Contents", app + "/Contents/Info.plist"};
  for (const std::string& path : items) setOwner(on(path), nobody, nobody);
  ::chmod(on(app).c_str(), 06700);
  constexpr const char* quarantine = "user.com.apple.quarantine";
  const bool hasMarks = ::setxattr(on("/outside").c_str(), quarantine, "1", 1, 0) == 0;
  for (const std::string& path : items) ::setxattr(on(path).c_str(), quarantine, "1", 1, 0);
  const auto isMarked = [&](const std::string& path) {
    return ::getxattr(on(path).c_str(), quarantine, nullptr, 0) == 1;
  };
  EXPECT_EQ(change("/usr/sbin/chown", {"-R", owner_, app}), "");
  EXPECT_EQ(change("/bin/chmod", {"-R", "0775", app}), "");
  EXPECT_EQ(change("/usr/bin/xattr", {"-dr", "com.apple.quarantine", app}), "");
  for (const std::string& path : items) {
    EXPECT_EQ(state(path), handedOver_ + " 775") << path;
    EXPECT_FALSE(isMarked(path)) << path;
  }
  EXPECT_EQ(state(app + "/roots"), "0:0 755") << "what belongs to others stays theirs";
  EXPECT_EQ(state(app + "/roots/file"), "0:0 644");
  EXPECT_EQ(ownerOf(on("/outside")) + " " + modeOf(on("/outside")), "65534:65534 600");
  EXPECT_EQ(isMarked("/outside"), hasMarks);
}

TEST_P(OperationsTest, StayInTheVolumeAndOutOfTheBundle) {
  const fs::path outside = on("").parent_path() / "outside";
  writeFile(outside / "etc/file", "");
  fs::create_directory_symlink(outside, on("/Applications/link"));  // leads nowhere on the volume
  fs::create_directory_symlink("/nowhere", on("/Applications/dangling"));
  const std::string before = ownerOf(outside / "etc/file") + modeOf(outside / "etc/file");
  for (const std::string path : {"/Applications/link/etc", "/Applications/link/etc/file", "/Applications/dangling/x"}) {
    change("/usr/sbin/chown", {"-R", owner_, path});
    change("/bin/chmod", {"-R", "0775", path});
    change("/usr/bin/touch", {path + "/new", path});
    EXPECT_NE(change("/bin/mkdir", {"-m775", "-p", path + "/new"}), "") << path;
    change("/bin/mv", {"-f", path, "/Applications/moved"});
    change("/bin/rm", {"-fR", path});
  }
  EXPECT_EQ(namesIn(outside / "etc"), "file");
  EXPECT_EQ(ownerOf(outside / "etc/file") + modeOf(outside / "etc/file"), before);
  EXPECT_EQ(namesIn(on("/Applications")), "dangling link");
  const std::string own = machine_.inBundle("Resources").string();
  EXPECT_EQ(change("/bin/rm", {"-fR", own}), "Read-only file system");
  EXPECT_EQ(namesIn(own), "en.lproj");
}

INSTANTIATE_TEST_SUITE_P(BothWays, OperationsTest, testing::Values(Way::byRoot, Way::byHelper),
                         testing::PrintToStringParamName());

}  // namespace
