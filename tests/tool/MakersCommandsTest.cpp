// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "foundation/Text.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/propertylist/PropertyList.h"
#include "support/TestMachine.h"

namespace {

/// The tool that was built, and a copy of the sample's bundle as a maker's own.
class MakersCommandsTest : public testing::Test {
 protected:
  MakersCommandsTest() {
    fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::create_directory(folder_.path() / "tmp");
  }

  /// The status of a shell's command; what it writes is in output().
  int shell(const std::string& command) {
    const std::string start = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; export TMPDIR='" +
                              (folder_.path() / "tmp").string() + "'; cd '" + folder_.path().string() + "'; ";
    const int status = std::system(("(" + start + command + ") >'" + output_.string() + "' 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  int tool(const std::string& arguments, const std::string& bundle = INSTALLER_BUNDLE) {
    return shell("'" + bundle + "/Contents/MacOS/InstallerTool' " + arguments);
  }
  [[nodiscard]] bool says(const std::string& text) const { return readFile(output_).find(text) != std::string::npos; }
  /// Changes values of the configuration.
  void configure(const Texts& values) const {
    const fs::path table = bundle_ / "Contents/Resources/en.lproj/installer.strings";
    std::string text = readFile(table);
    for (const auto& [key, value] : values) {
      const std::size_t line = text.find("\"" + key + "\" = \"");
      ASSERT_NE(line, std::string::npos) << key;
      text.replace(line, text.find(";\n", line) - line, "\"" + key + "\" = \"" + value + "\"");
    }
    writeFile(table, text);
  }
  void movePayloadOut() const {
    fs::rename(bundle_ / "Contents/Resources/files", folder_.path() / "Nutzlast");
    configure({{"payload", "Nutzlast"}});
  }

  TemporaryFolder folder_;
  const fs::path bundle_ = folder_.path() / "My Installer.app";
  const fs::path output_ = folder_.path() / "output";
};

TEST_F(MakersCommandsTest, PreviewPicturesEveryPage) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root: the pictures are of a real install";
  // In its turn with the wizard's tests, whoever runs them: they would see the applications that run here.
  const FileDescriptor turn(
      ::open((fs::temp_directory_path() / "installer-wizard-tests").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_EQ(::flock(turn.get(), LOCK_EX), 0);
  movePayloadOut();
  configure({{"aperture_page", "yes"}, {"product_name", "Grün/Blau"}});
  ASSERT_EQ(tool("preview 'My Installer.app' --pictures pages --hosts 2 --language de --appearance dark"), 0)
      << readFile(output_);
  EXPECT_EQ(namesIn(folder_.path() / "pages"),
            "aperture.png completion.png custom-folder.png failure.png hosts.png installing.png licence.png ready.png "
            "running-host.png");
  for (const auto& page : fs::directory_iterator(folder_.path() / "pages")) {
    const std::string picture = readFile(page);
    EXPECT_EQ(picture.substr(1, 3), "PNG") << page;
    EXPECT_EQ(picture.substr(16, 4), std::string("\0\0\x05\0", 4)) << page << " is not twice 640 pixels wide";
  }
  EXPECT_EQ(namesIn(folder_.path() / "tmp"), "") << "the volume is thrown away";
  EXPECT_FALSE(fs::exists(bundle_ / "Contents/Resources/files")) << "the bundle is left alone";
}

TEST_F(MakersCommandsTest, TheSampleIsAsABundleShouldBe) {
  EXPECT_EQ(tool("check '" INSTALLER_BUNDLE "'"), 0) << readFile(output_);
  const fs::path plugIn =
      "Contents/Resources/files/PHOTOSHOP_PLUGINS/Corvane/Dunmore 3.plugin/Contents/MacOS/Dunmore 3";
  fs::resize_file(bundle_ / plugIn, fs::file_size(bundle_ / plugIn) / 2);
  EXPECT_EQ(tool("check 'My Installer.app'"), 1) << "half a program";
  EXPECT_TRUE(says("Dunmore 3.plugin/Contents/MacOS/Dunmore 3")) << readFile(output_);
}

TEST_F(MakersCommandsTest, PreviewTellsWhatItLacks) {
  EXPECT_EQ(tool("preview"), 64);
  EXPECT_EQ(tool("preview 'My Installer.app' --hosts 4"), 64);
  EXPECT_EQ(tool("preview 'My Installer.app' --appearance grey"), 64);
  EXPECT_EQ(tool("preview nowhere"), 66);
  EXPECT_EQ(tool("preview 'My Installer.app'"), 69);
  EXPECT_TRUE(says("there is no display")) << readFile(output_);
  EXPECT_EQ(namesIn(folder_.path() / "tmp"), "");
  configure({{"payload", "nowhere"}});
  EXPECT_EQ(tool("preview 'My Installer.app'"), 66);
  EXPECT_TRUE(says("the payload nowhere is not beside")) << readFile(output_);
  fs::remove(bundle_ / "Contents/MacOS/Installer");
  EXPECT_EQ(tool("preview 'My Installer.app'"), 66);
  EXPECT_TRUE(says("no program for this system")) << readFile(output_);
}

TEST_F(MakersCommandsTest, PackNeedsABundleAndTheSources) {
  EXPECT_EQ(tool("pack nowhere"), 66);
  EXPECT_EQ(tool("pack 'My Installer.app'", bundle_), 69);
  EXPECT_TRUE(says("there is no tools/make-mac-app")) << readFile(output_);
  EXPECT_EQ(tool("pack 'My Installer.app' --notarize me"), 1) << "found by the place of the tool";
  EXPECT_TRUE(says("make-mac-app: only what is signed can be notarized")) << readFile(output_);
  EXPECT_EQ(shell("cd " SOURCE_FOLDER "/docs && '" + bundle_.string() + "/Contents/MacOS/InstallerTool' pack '" +
                  bundle_.string() + "' --sign nobody"),
            1)
      << "found from where it is called";
  EXPECT_TRUE(says("make-mac-app: ")) << readFile(output_);
}

/// What packing makes of a bundle before it becomes a disk image, with programs of this system in the place of a Mac's.
class AssemblingTest : public MakersCommandsTest {
 protected:
  AssemblingTest() {
    for (const char* const processor : {"arm64", "x86_64"}) {
      const fs::path contents = folder_.path() / "builds" / processor / "Installer.app/Contents";
      fs::create_directories(contents);
      fs::copy(INSTALLER_BUNDLE "/Contents/MacOS", contents / "MacOS");
      fs::copy(INSTALLER_BUNDLE "/Contents/Info.plist", contents / "Info.plist");
    }
  }
  int assemble() { return shell("'" SOURCE_FOLDER "/tools/mac/assemble-app' builds 'My Installer.app'"); }
};

TEST_F(AssemblingTest, TakesNamesAndPayloadFromTheConfiguration) {
  movePayloadOut();
  configure({{"product_name", "Grün/Blau 5"},
             {"product_version", "5.0.1"},
             {"installer_identifier", "com.example.%PRODUCTNAME%"},
             {"languages", "de en xx"}});
  ASSERT_EQ(assemble(), 0) << readFile(output_);
  EXPECT_EQ(readFile(output_), "builds/Grün-Blau 5 Installer.dmg\n");
  const fs::path app = folder_.path() / "builds/Installer.app/Contents";
  EXPECT_EQ(namesIn(app / "Resources/files"), "HD LIGHTROOM PHOTOSHOP PHOTOSHOP_PLUGINS");
  EXPECT_EQ(namesIn(app), "Info.plist MacOS Resources SharedSupport") << "nothing of this system";
  const auto info = readPropertyList(readFile(app / "Info.plist"));
  ASSERT_TRUE(info);
  const auto value = [&](const char* key) { return entryOf(*info, key).text(); };
  EXPECT_EQ(value("CFBundleName"), "Grün/Blau 5 Installer");
  EXPECT_EQ(value("CFBundleShortVersionString") + value("CFBundleVersion"), "5.0.15.0.1");
  EXPECT_EQ(value("CFBundleIdentifier"), "com.example.Grün/Blau 5");
  EXPECT_EQ(value("NSHumanReadableCopyright"), "© 2025 Corvane");
  EXPECT_EQ(value("LSMinimumSystemVersion"), "11.0");
  EXPECT_EQ(entryOf(*info, "CFBundleLocalizations"), Value(Value::Array{Value("de"), Value("en")}));
}

TEST_F(AssemblingTest, RefusesWhatIsUnclear) {
  configure({{"product_version", ""}});
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("installer.strings lacks \"product_version\"")) << readFile(output_);
  configure({{"product_version", "1"}, {"payload", "nowhere"}});
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("nowhere is no folder")) << readFile(output_);
  fs::create_directory(folder_.path() / "nowhere");
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("there are two payloads")) << readFile(output_);
}

}  // namespace
