#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "support/TestMachine.h"

namespace {

struct Outcome {
  int status;
  std::string output;
  std::string errors;
};

/// Runs the program that was built, from a copy of its bundle, on a sample volume.
class QuietInstallTest : public testing::Test {
 protected:
  QuietInstallTest() {
    fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  }

  void makeSampleVolume(const std::string& user) {
    const std::string command =
        std::string(MAKE_SAMPLE_VOLUME) + " '" + volume_.string() + "' '" + user + "' " + STAND_IN;
    ASSERT_EQ(std::system(command.c_str()), 0);
  }

  Outcome run(const std::vector<std::string>& arguments, const std::string& environment = "LANG=C") {
    std::string command = environment + " '" + (bundle_ / "Contents/MacOS/Installer").string() + "'";
    for (const std::string& argument : arguments) command += " '" + argument + "'";
    const fs::path output = folder_.path() / "output";
    const fs::path errors = folder_.path() / "errors";
    const int status = std::system((command + " >" + output.string() + " 2>" + errors.string()).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(output), readFile(errors)};
  }

  [[nodiscard]] std::string installed(const std::string& path) const { return readFile(volume_.string() + path); }
  [[nodiscard]] std::string log() const {
    return installed("/Library/Application Support/Corvane/Dunmore 3 Installer.log");
  }
  [[nodiscard]] static std::string ownerOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return "(none)";
    return std::to_string(status.st_uid) + ":" + std::to_string(status.st_gid);
  }

  TemporaryFolder folder_;
  fs::path bundle_ = folder_.path() / "A copy of the Installer.app";
  fs::path volume_ = folder_.path() / "volume";
};

TEST_F(QuietInstallTest, RefusesATargetThatIsNone) {
  writeFile(folder_.path() / "file", "");
  for (const std::string& target :
       {(folder_.path() / "none").string(), (folder_.path() / "file").string(), std::string()}) {
    const Outcome outcome = run({"-quiet", "-target", target});
    EXPECT_EQ(outcome.status, 66) << target;
    EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(run({"-quiet", "-target"}).status, 64);
  EXPECT_EQ(run({"-quiet", "-targte", volume_.string()}).status, 64);
  EXPECT_FALSE(fs::exists(volume_));
}

TEST_F(QuietInstallTest, InstallsForWhoCalledSudo) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  makeSampleVolume("nobody");
  const Outcome outcome = run({"-quiet", "-target", volume_.string()}, "SUDO_UID=65534");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output.find("Hosts found: 4\n"), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("Failures: 0\n"), std::string::npos);
  EXPECT_NE(outcome.output.find(volume_.string() + "/Library/Application Support/Corvane/Dunmore 3 Installer.log"),
            std::string::npos);

  std::size_t lines = 0;
  std::istringstream paths(log());
  for (std::string path; std::getline(paths, path); ++lines) {
    EXPECT_EQ(ownerOf(volume_.string() + path), "65534:" + std::to_string(*groupNumber("admin"))) << path;
    EXPECT_EQ(modeOf(volume_.string() + path), path.ends_with(".csv") ? "644" : "775") << path;
  }
  EXPECT_EQ(outcome.output.find("Items installed: " + std::to_string(lines) + "\n") != std::string::npos, true);
  EXPECT_EQ(modeOf(volume_ / "Library/Application Support/Corvane/Dunmore 3 Installer.log"), "644");
  for (const auto& entry : fs::recursive_directory_iterator(volume_ / "Users/nobody")) {
    EXPECT_TRUE(ownerOf(entry.path()).starts_with("65534:")) << entry.path();
    EXPECT_EQ(entry.path().filename().string().find(".installing-"), std::string::npos) << entry.path();
  }
  const std::string support = "/Users/nobody/Library/Application Support/Corvane/Pelloria 4/";
  EXPECT_EQ(installed(support + "manifest.xml"), "(no such file)");
  EXPECT_EQ(installed(support + "Packs/Winter.bundle/manifest.xml"), "<manifest/>\n");
  EXPECT_TRUE(fs::exists(volume_ / "Users/nobody/.local/share/applications/com.corvane.dunmore3.desktop"));
  EXPECT_EQ(installed("/Library/Application Support/Corvane/Dunmore 3/.catalogue"), "(no such file)");
  EXPECT_FALSE(fs::exists(volume_ / "Library/Application Support/Adobe/Lightroom")) << "a Lightroom plug-in";
  EXPECT_EQ(namesIn(volume_ / "Applications/Adobe Photoshop CS5/Plug-Ins"), "");

  const std::string before = log();
  EXPECT_EQ(run({"-quiet", "-target", volume_.string()}, "SUDO_UID=65534").output, outcome.output);
  EXPECT_EQ(log(), before);
}

TEST_F(QuietInstallTest, IsAnotherProductsWithAnotherPayload) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  makeSampleVolume("root");
  fs::remove_all(bundle_ / "Contents/Resources/files");
  fs::remove(bundle_ / "Contents/Info.plist");
  writeFile(bundle_ / "Contents/Resources/files/PHOTOSHOP_PLUGINS/Granby.txt", "Granby");
  writeFile(
      bundle_ / "Contents/Resources/en.lproj/installer.strings", "\xFF\xFE" + [] {
        std::string wide;
        for (const char c : std::string("company_name = Tamsin; product_name = Granby;")) wide += std::string{c, '\0'};
        return wide;
      }());
  const Outcome outcome = run({"-quiet", "-target", volume_.string()}, "SUDO_UID=");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.starts_with("Granby was installed on ")) << outcome.output;
  EXPECT_EQ(installed("/Applications/Adobe Photoshop CS6/Plug-Ins/Granby.txt"), "Granby");
  EXPECT_NE(installed("/Library/Application Support/Tamsin/Granby Installer.log").find("/Plug-Ins/Granby.txt\n"),
            std::string::npos);
}

TEST_F(QuietInstallTest, SaysWhatFailed) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  makeSampleVolume("root");
  ::mkfifo((bundle_ / "Contents/Resources/files/PHOTOSHOP_PLUGINS/Corvane/Dunmore 3.plugin/Contents/pipe").c_str(),
           0600);
  const Outcome outcome = run({"-quiet", "-target", volume_.string()}, "SUDO_UID=");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.starts_with("Dunmore 3 was not installed completely on ")) << outcome.output;
  EXPECT_NE(outcome.output.find("Failures: 1\n  /Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/Dunmore 3.plugin\n"),
            std::string::npos)
      << outcome.output;
  EXPECT_NE(outcome.errors.find("A file could not be installed: "), std::string::npos);
  EXPECT_EQ(log().find("CC 2019"), std::string::npos) << "no further host";
}

TEST_F(QuietInstallTest, FailsTheDocumentedWayWithoutRights) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody without rights";
  makeSampleVolume("nobody");
  for (const fs::path& path : {folder_.path(), bundle_}) ::chmod(path.c_str(), 0755);
  const std::string command = "setpriv --reuid=65534 --regid=65534 --clear-groups '" +
                              (bundle_ / "Contents/MacOS/Installer").string() + "' -quiet -target '" +
                              volume_.string() + "' >" + (folder_.path() / "output").string() + " 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0);
  const std::string output = readFile(folder_.path() / "output");
  EXPECT_NE(output.find("SFAuthorization permit with rights error\n"), std::string::npos) << output;
  EXPECT_NE(output.find("Items installed: 0\n"), std::string::npos) << output;
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
}

TEST_F(QuietInstallTest, GoesOnWhenNobodyReadsItsOutput) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  makeSampleVolume("root");
  const std::string command = "'" + (bundle_ / "Contents/MacOS/Installer").string() + "' -quiet -target '" +
                              volume_.string() + "' 2>&1 >&- </dev/null | true";
  EXPECT_EQ(std::system(("unset SUDO_UID; " + command).c_str()), 0);
  EXPECT_NE(log().find("CC 2015.5"), std::string::npos) << "up to the last host";
}

}  // namespace
