// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/file.h>

#include "foundation/Text.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/propertylist/PropertyList.h"
#include "support/ProgramTest.h"

namespace {

/// The tool that was built, and a copy of the sample's bundle as a maker's own.
class MakersCommandsTest : public ProgramTest {
 protected:
  MakersCommandsTest() {
    copyInstaller(bundle_);
    fs::create_directory(folder_.path() / "tmp");
  }

  int tool(const std::string& arguments, const std::string& bundle = INSTALLER_BUNDLE) {
    return shell("unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM; export TMPDIR=\"$PWD/tmp\"; '" + bundle +
                 "/Contents/MacOS/InstallerTool' " + arguments);
  }
  void configure(const Texts& values) const {
    for (const auto& [key, value] : values) ::configure(bundle_, key, value);
  }
  void movePayloadOut() const {
    fs::rename(bundle_ / "Contents/Resources/files", folder_.path() / "Nutzlast");
    configure({{"payload", "Nutzlast"}});
  }

  const fs::path bundle_ = folder_.path() / "My Installer.app";
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
      << output();
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
  EXPECT_EQ(tool("preview 'My Installer.app' --pictures pages"), 73) << "nobody's pictures are overwritten";
}

TEST_F(MakersCommandsTest, PreviewTellsWhatItLacks) {
  EXPECT_EQ(tool("preview"), 64);
  EXPECT_EQ(tool("preview 'My Installer.app' --hosts 4"), 64);
  EXPECT_EQ(tool("preview 'My Installer.app' --appearance grey"), 64);
  EXPECT_EQ(tool("preview nowhere"), 66);
  EXPECT_EQ(tool("preview 'My Installer.app'"), 69);
  EXPECT_TRUE(says("there is no display")) << output();
  EXPECT_EQ(namesIn(folder_.path() / "tmp"), "");
  configure({{"payload", "nowhere"}});
  EXPECT_EQ(tool("preview 'My Installer.app'"), 66);
  EXPECT_TRUE(says("the payload \"nowhere\" is no folder beside")) << output();
  EXPECT_EQ(tool("preview 'My Installer.app' --language xx"), 64);
  configure({{"payload", ""}});
  fs::remove(bundle_ / "Contents/MacOS/Installer");
  EXPECT_EQ(tool("preview 'My Installer.app'"), 66);
  EXPECT_TRUE(says("no program for this system")) << output();
}

TEST_F(MakersCommandsTest, PackNeedsABundleAndTheSources) {
  EXPECT_EQ(tool("pack nowhere"), 66);
  EXPECT_EQ(tool("pack 'My Installer.app'", bundle_), 69);
  EXPECT_TRUE(says("there is no tools/make-mac-app")) << output();
  EXPECT_EQ(tool("pack 'My Installer.app' --notarize me"), 1) << "found by the place of the tool";
  EXPECT_TRUE(says("make-mac-app: only what is signed can be notarized")) << output();
  EXPECT_EQ(shell("cd " SOURCE_FOLDER "/docs && '" + bundle_.string() + "/Contents/MacOS/InstallerTool' pack '" +
                  bundle_.string() + "' --sign nobody"),
            1)
      << "found from where it is called";
  EXPECT_TRUE(says("make-mac-app: ")) << output();
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
  ASSERT_EQ(assemble(), 0) << output();
  EXPECT_EQ(output(), "builds/Grün-Blau 5 Installer.dmg\n");
  const fs::path app = folder_.path() / "builds/Installer.app/Contents";
  EXPECT_EQ(namesIn(app / "Resources/files"), "HD LIGHTROOM PHOTOSHOP PHOTOSHOP_PLUGINS");
  EXPECT_FALSE(fs::exists(app / "Resources/fr.lproj")) << "not offered";
  EXPECT_EQ(shell("find builds/Installer.app ! -type l ! -perm 755 ! -perm 644 | grep ."), 1) << output();
  EXPECT_EQ(tool("check builds/Installer.app | grep payload"), 1) << output();
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
  EXPECT_TRUE(says("installer.strings lacks \"product_version\"")) << output();
  configure({{"product_version", "1"}, {"payload", "nowhere"}});
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("the payload \"nowhere\" is no folder beside")) << output();
  configure({{"payload", ".."}});
  EXPECT_EQ(assemble(), 1);
  configure({{"payload", "nowhere"}});
  fs::create_directory(folder_.path() / "nowhere");
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("there are two payloads")) << output();
  configure({{"payload", ""}});
  fs::create_symlink("/etc", bundle_ / "Contents/Resources/help");
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("Resources/help leads out of")) << output();
  fs::remove(bundle_ / "Contents/Resources/help");
  writeFile(bundle_ / "Contents/Info.plist", "<plist><dict>");
  EXPECT_EQ(assemble(), 1);
  EXPECT_TRUE(says("Info.plist is damaged")) << output();
}

}  // namespace
