// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/SystemCalls.h"
#include "platform/macos/MacElevation.h"
#include "platform/processes/ChildProcess.h"
#include "support/TestMachine.h"

namespace {

/// Runs the tools for real, and notes them.
class MacElevationTest : public MachineTest {
 protected:
  LaunchStatus run(const std::string& tool, const std::vector<std::string>& arguments) {
    ++runs_;
    if (answer_ != launchSucceeded || !doesWork_) return answer_;
    const auto child = spawn({tool, arguments, STDERR_FILENO});
    EXPECT_TRUE(child);
    EXPECT_EQ(::waitpid(*child, nullptr, 0), *child);
    return launchSucceeded;
  }
  [[nodiscard]] Volume::Place find(const std::string& path) const {
    auto place = volume_.find(path, Volume::LastLink::keep, Volume::Purpose::change);
    EXPECT_TRUE(place) << path;
    return std::move(*place);
  }
  static struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
  }

  LaunchStatus answer_ = launchSucceeded;
  bool doesWork_ = true;
  int runs_ = 0;
  Volume volume_{on("/").parent_path().string(), machine_.inBundle("").parent_path().parent_path().string()};
  const UserAccount account_{4321, 4322, "person", "/Users/person"};
  MacElevation elevation_{[this](const std::string& tool, const auto& arguments) { return run(tool, arguments); },
                          Places(volume_, account_.home, account_.id), account_, Ownership{4321, 80}};
};

TEST_F(MacElevationTest, MakesFoldersThatAreTheUsersInThePlacesOnly) {
  const auto made = find("/Library/Application Support/New");
  EXPECT_TRUE(elevation_.makeFolder(made.spot(), 0700));
  const struct stat status = statusOf(on("/Library/Application Support/New"));
  EXPECT_EQ(status.st_uid, 4321U);
  EXPECT_EQ(status.st_gid, 80U);
  EXPECT_EQ(status.st_mode & 07777U, 0700U);
  EXPECT_TRUE(elevation_.makeFolder(made.spot(), 0700).error().is(std::errc::file_exists));
  runs_ = 0;
  EXPECT_TRUE(elevation_.makeFolder(find("/Library/New").spot(), 0700).error().is(std::errc::operation_not_permitted));
  EXPECT_TRUE(elevation_.remove(find("/Library/Preferences").spot()).error().is(std::errc::operation_not_permitted));
  EXPECT_EQ(runs_, 0);
}

TEST_F(MacElevationTest, MovesToFreeNamesAndNeverIntoAFolder) {
  writeFile(on("/Applications/one/file"), "1");
  writeFile(on("/Applications/two/file"), "2");
  writeFile(on("/Applications/three"), "3");
  const auto from = find("/Applications/one");
  const auto taken = find("/Applications/two");
  using Move = Elevation::Move;
  EXPECT_TRUE(elevation_.move(from.spot(), taken.spot(), Move::toFreeName).error().is(std::errc::file_exists));
  EXPECT_TRUE(elevation_.move(from.spot(), taken.spot(), Move::replace).error().is(std::errc::is_a_directory));
  EXPECT_TRUE(isMissingOperation(elevation_.move(from.spot(), taken.spot(), Move::exchange).error().code));
  EXPECT_EQ(runs_, 0) << "nothing was tried";
  EXPECT_TRUE(elevation_.move(from.spot(), find("/Applications/new").spot(), Move::toFreeName));
  EXPECT_EQ(readFile(on("/Applications/new/file")), "1");
  const auto file = find("/Applications/new/file");
  EXPECT_TRUE(elevation_.move(file.spot(), find("/Applications/three").spot(), Move::replace));
  EXPECT_EQ(readFile(on("/Applications/three")), "1");
  doesWork_ = false;  // as when the system protects an application
  const Status left = elevation_.move(find("/Applications/three").spot(), file.spot(), Move::toFreeName);
  EXPECT_TRUE(left.error().is(std::errc::operation_not_permitted));
}

TEST_F(MacElevationTest, HandsOverWhatIsTheUsersAndLeavesTheRest) {
  const fs::path folder = on("/Applications/folder");
  for (const char* const name : {"own", "other", "other folder/own"}) writeFile(folder / name, "");
  fs::create_symlink("/etc/passwd", folder / "link");
  for (const fs::path& item : {folder, folder / "own", folder / "link", folder / "other folder/own"}) {
    ASSERT_EQ(::lchown(item.c_str(), 4321, 1), 0);
  }
  EXPECT_TRUE(elevation_.handOver(find("/Applications/folder").spot()));
  EXPECT_EQ(statusOf(folder).st_gid, 80U);
  EXPECT_EQ(statusOf(folder / "own").st_gid, 80U);
  EXPECT_EQ(statusOf(folder / "link").st_gid, 80U);
  EXPECT_EQ(statusOf(folder / "other").st_uid, 0U);
  EXPECT_EQ(statusOf(folder / "other folder/own").st_gid, 1U) << "lies in a folder of somebody else's";
}

TEST_F(MacElevationTest, TellsARefusalFromALackOfMeans) {
  writeFile(on("/Applications/file"), "");
  const auto place = find("/Applications/file");
  answer_ = errAuthorizationCanceled;
  const Status cancelled = elevation_.remove(place.spot());
  EXPECT_EQ(cancelled.error().domain, authorizationErrorDomain);
  EXPECT_EQ(cancelled.error().code, errAuthorizationCanceled);
  answer_ = errAuthorizationToolExecuteFailure;
  EXPECT_TRUE(elevation_.remove(place.spot()).error().is(std::errc::operation_not_permitted));
  answer_ = launchSucceeded;
  EXPECT_TRUE(elevation_.remove(place.spot()));
  EXPECT_FALSE(fs::exists(on("/Applications/file")));
}

TEST(ProtectionTest, NamesTheSettingThatAllowsTheChange) {
  EXPECT_NE(protectionOf("/Applications/Editor.app/Contents/PlugIns/a").find("App Management"), std::string::npos);
  EXPECT_NE(protectionOf("/Applications/Editor.app").find("App Management"), std::string::npos);
  EXPECT_NE(protectionOf("/Users/me/Documents/plug-ins/a").find("Files and Folders"), std::string::npos);
  EXPECT_EQ(protectionOf("/Library/Application Support/a.application"), "");
}

}  // namespace
