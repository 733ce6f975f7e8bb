// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>

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

TEST_F(MakersCommandsTest, DiskImagesHaveNamesOfAnyLengthAndComeWhole) {
  if (shell("command -v xorriso") != 0) GTEST_SKIP() << "xorriso is not installed";
  const std::string make = "'" SOURCE_FOLDER "/tools/mac/make-disk-image' ";
  const std::string name = "xÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄÄ.dmg";  // with a letter across the 32nd byte
  writeFile(folder_.path() / "images/App.app/program", "program");
  writeFile(folder_.path() / "images/unfinished-image-1/volume", "of one that was killed");
  ASSERT_EQ(shell(make + "images/App.app images/" + name), 0) << output();
  const std::string image = readFile(folder_.path() / "images" / name);
  ASSERT_GT(image.size(), 512U);
  EXPECT_EQ(image.substr(image.size() - 512, 4), "koly");
  EXPECT_EQ(shell(make + "images/nothing.app images/" + name), 1);
  EXPECT_TRUE(says("make-disk-image: ") && !says("Traceback")) << output();
  EXPECT_TRUE(readFile(folder_.path() / "images" / name) == image) << "the earlier one stays";
  EXPECT_EQ(namesIn(folder_.path() / "images"), "App.app " + name);
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
  int assemble() { return shell("umask 077; '" SOURCE_FOLDER "/tools/mac/assemble-app' builds 'My Installer.app'"); }
  /// Whether the bundle is refused with one sentence that has this in it.
  bool isRefused(const std::string& sentence) {
    return assemble() == 1 && output().starts_with("assemble-app: ") && says(sentence) && !says("Traceback");
  }

  const fs::path resources_ = bundle_ / "Contents/Resources";
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
  EXPECT_EQ(shell("grep -rF Nutzlast builds/Installer.app/Contents/Resources/en.lproj"), 1) << output();
  EXPECT_EQ(shell("find builds/Installer.app/Contents/MacOS/Installer -perm 755 | grep ."), 0);
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

TEST_F(AssemblingTest, ReadsTheConfigurationAsTheProgramDoes) {
  const fs::path settings = resources_ / "en.lproj/installer.strings";
  const std::string text =
      replacingOccurrences(readFile(settings), "\"Dunmore 3\"", R"('Bl\U00e4u\UD83d\ude00 \"\101\"')");
  writeFile(settings,
            text + "// \"payload\" = \"nowhere\"; /*\nfree = \"//\"; /* \"product_name\" = \"\"; */ alone;\n");
  ASSERT_EQ(assemble(), 0) << output();
  EXPECT_EQ(output(), "builds/Bläu😀 \"A\" Installer.dmg\n");
  ASSERT_EQ(shell("iconv -t UTF-16LE '" + settings.string() + "' >wide && mv wide '" + settings.string() + "'"), 0);
  ASSERT_EQ(assemble(), 0) << output();
  EXPECT_EQ(output(), "builds/Bläu😀 \"A\" Installer.dmg\n");
  writeFile(settings, text + "\"free\" = \"x\"\n\"payload\" = \"\";\n");
  EXPECT_TRUE(isRefused("line " + std::to_string(1 + std::count(text.begin(), text.end(), '\n')) + ":")) << output();
}

TEST_F(AssemblingTest, RefusesWhatIsUnclear) {
  configure({{"product_version", ""}});
  EXPECT_TRUE(isRefused("My Installer.app/Contents/Resources/en.lproj/installer.strings lacks \"product_version\""))
      << output();
  configure({{"product_version", "1"}, {"payload", "nowhere"}});
  EXPECT_TRUE(isRefused("the payload \"nowhere\" is no folder beside")) << output();
  fs::create_directory(folder_.path() / "nowhere");
  EXPECT_TRUE(isRefused("there are two payloads")) << output();
  for (const std::string elsewhere : {".", "..", "tmp/../nowhere", "/tmp"}) {
    configure({{"payload", elsewhere}});
    EXPECT_TRUE(isRefused("the payload \"" + elsewhere + "\" is no folder beside")) << output();
  }
}

TEST_F(AssemblingTest, RefusesWhatCannotBePacked) {
  const fs::path item = resources_ / "files/item";
  for (const char* const elsewhere : {"/etc/passwd", "../../../../tmp", "../../../../My Installer.app/Contents"}) {
    fs::create_symlink(elsewhere, item);
    EXPECT_TRUE(isRefused("My Installer.app/Contents/Resources/files/item leads out of")) << output();
    fs::remove(item);
  }
  ASSERT_EQ(::mkfifo(item.c_str(), 0600), 0);
  EXPECT_TRUE(isRefused("files/item is neither")) << output();
  fs::remove(item);
  const fs::path info = bundle_ / "Contents/Info.plist";
  for (const char* const name : {"..", "/", "a\nb"}) {
    writeFile(info, "<plist><dict><key>CFBundleName</key><string>" + std::string(name) + "</string></dict></plist>");
    EXPECT_TRUE(isRefused("no disk image can be called")) << output();
  }
  writeFile(info, "<plist><dict><key>CFBundle");
  EXPECT_TRUE(isRefused("My Installer.app/Contents/Info.plist is no property list")) << output();
  const fs::path settings = resources_ / "en.lproj/installer.strings";
  fs::remove(settings);
  ASSERT_EQ(::mkfifo(settings.c_str(), 0600), 0);
  EXPECT_TRUE(isRefused("there is no file")) << output();
}

}  // namespace
