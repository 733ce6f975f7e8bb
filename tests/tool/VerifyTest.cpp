// SPDX-License-Identifier: Apache-2.0

#include <sys/xattr.h>
#include <unistd.h>

#include "foundation/MachO.h"
#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"
#include "tool/HostSurvey.h"
#include "tool/PlanReport.h"
#include "tool/VerifyReport.h"

namespace {

using Kind = ItemDifference::Kind;

/// A product with a plug-in in a host, a folder of presets, a file and a bundle with a link, installed.
class InstalledTest : public MachineTest {
 protected:
  InstalledTest() {
    machine_.addPhotoshop("Adobe Photoshop CS6");
    writeFile(machine_.payload("HD/Applications/Studio.app/Contents/Versions/A/core"), std::string(300'000, 'c'));
    fs::create_symlink("A", machine_.payload("HD/Applications/Studio.app/Contents/Versions/Current"));
    ::setxattr(machine_.payload("HD/Applications/Studio.app/Contents/Versions/A/core").c_str(), "user.note", "1", 1, 0);
    writeFile(machine_.payload(product_ + "/Presets/night.preset"), "night");
    writeFile(machine_.payload(product_ + "/Read Me.txt"), "read");
    makeBundle(machine_.payload("PHOTOSHOP_PLUGINS/Corvane/Grain.plugin"),
               {{"CFBundleVersion", "3.1"}, {"CFBundleExecutable", "Grain"}, {"MinimumHostVersion", "13.0"}});
    install();
  }

  void install() {
    InstallFilesController controller(platform_);
    controller.install(HostsModel(platform_).foundHosts(), /*shouldConfigureLumatraExternalEditors=*/true);
    EXPECT_FALSE(controller.fileOpErrorOccurred());
  }
  /// Each difference as "KIND PATH".
  std::vector<std::pair<Kind, std::string>> differences(bool isOnlyLogged = false) {
    std::vector<std::pair<Kind, std::string>> all;
    for (const ItemDifference& difference : verifyInstall(platform_, isOnlyLogged).differences) {
      all.emplace_back(difference.kind, difference.path);
    }
    return all;
  }

  const std::string product_ = "HD/Library/Application Support/Corvane/Dunmore 3";
  const std::string core_ = "/Applications/Studio.app/Contents/Versions/A/core";
  const std::string link_ = "/Applications/Studio.app/Contents/Versions/Current";
  const std::string plugIn_ = "/Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/Grain.plugin";
  const std::string presets_ = "/Library/Application Support/Corvane/Dunmore 3/Presets";
};

TEST_F(InstalledTest, VerifyFindsEachKindOfDifference) {
  EXPECT_EQ(differences().size(), 0U);
  const auto expectOnly = [&](Kind kind, const std::string& path) {
    EXPECT_EQ(differences(), (std::vector<std::pair<Kind, std::string>>{{kind, path}}));
    EXPECT_EQ(makePlanReport(platform_).changes, 1U) << path;
    install();
    EXPECT_EQ(differences().size(), 0U) << "mended: " << path;
  };
  std::string content = readFile(on(core_));
  content[299'999] = 'x';
  writeFile(on(core_), content);
  expectOnly(Kind::content, core_);
  fs::resize_file(on(core_), 1000);
  expectOnly(Kind::size, core_);
  fs::remove(on(core_));
  expectOnly(Kind::missing, core_);
  fs::permissions(on(core_), fs::perms(0755));
  expectOnly(Kind::mode, core_);
  ::removexattr(on(core_).c_str(), "user.note");
  expectOnly(Kind::attributes, core_);
  fs::remove(on(link_));
  fs::create_symlink("B", on(link_));
  static_cast<void>(::lchown(on(link_).c_str(), static_cast<uid_t>(-1), *groupNumber("admin")));
  expectOnly(Kind::link, link_);
  fs::remove(on(link_));
  writeFile(on(link_), "A");
  expectOnly(Kind::link, link_);
  fs::remove_all(on(presets_));
  writeFile(on(presets_), "");
  expectOnly(Kind::type, presets_);
  writeFile(on(plugIn_ + "/Contents/extra"), "");
  expectOnly(Kind::extra, plugIn_ + "/Contents/extra");
  if (::geteuid() == 0) {
    EXPECT_EQ(::lchown(on(link_).c_str(), 65534, static_cast<gid_t>(-1)), 0);
    expectOnly(Kind::owner, link_);
  }
}

TEST_F(InstalledTest, VerifyLeavesPeopleTheirOwnFilesAndTrustsTheLogInWhatItLists) {
  writeFile(on(presets_ + "/mine.preset"), "");
  EXPECT_EQ(differences().size(), 0U) << "a folder of presets is no bundle";

  const std::string log = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const std::string lines = readFile(on(log));
  const std::string picked = "/Users/Shared/Plug-Ins of mine/Corvane/Grain.plugin";
  fs::create_directories(on(picked).parent_path());
  fs::copy(on(plugIn_), on(picked), fs::copy_options::recursive);
  fs::permissions(on(picked + "/Contents/Info.plist"), fs::perms(0600));
  writeFile(on(log), lines + picked + "\n/Library/gone\n");
  const auto found = differences();
  EXPECT_NE(std::ranges::find(found, std::pair(Kind::mode, picked + "/Contents/Info.plist")), found.end());
  EXPECT_EQ(found.back(), (std::pair<Kind, std::string>(Kind::missing, "/Library/gone")));

  // A person had not chosen the host.
  writeFile(on(log), lines.substr(0, lines.find("/Applications/Adobe")));
  fs::remove_all(on(plugIn_));
  EXPECT_EQ(differences().size(), 1U);
  EXPECT_EQ(differences(/*isOnlyLogged=*/true).size(), 0U);
  fs::remove(on(log));
  EXPECT_EQ(differences().back().second, log);
}

constexpr std::uint32_t intel = 0x01000007;
constexpr std::uint32_t apple = 0x0100000C;

TEST(MachOTest, TellsTheArchitecturesOfAllFormsInBothByteOrders) {
  using Names = std::vector<std::string>;
  for (const bool isBig : {false, true}) {
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xFEEDFACF, apple, 0x80000002, 2, 0, 0, 0, 0}, isBig)), Names{"arm64e"});
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xFEEDFACE, 18, 0, 2, 0, 0, 0}, isBig)), Names{"ppc"});
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xCAFEBABE, 2, intel, 3, 0, 0, 0, apple, 0, 0, 0, 0}, isBig)),
              (Names{"x86_64", "arm64"}));
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xCAFEBABF, 2, 7, 3, 0, 0, 0, 0, 0, 0, 99, 0, 0, 0, 0, 0, 0, 0}, isBig)),
              (Names{"i386", "cpu 99"}));
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xCAFEBABE, 52, 1, 2, 3}, isBig)), std::nullopt) << "a class file";
    EXPECT_EQ(architecturesOfMachO(bytesOf({0xCAFEBABE, 2, intel, 3, 0, 0, 0, apple}, isBig)), std::nullopt);
  }
  for (const std::string bytes : {"", "\xCF", "#!/bin/sh\n", "\xCF\xFA\xED\xFE\x07"}) {
    EXPECT_EQ(architecturesOfMachO(bytes), std::nullopt);
  }
}

TEST_F(InstalledTest, HostsTellWhoCanLoadThePlugIn) {
  const auto facts = [&] {
    const auto all = HostSurvey(platform_).facts();
    EXPECT_EQ(all.size(), 1U);
    return all.front();
  };
  EXPECT_EQ(facts().canLoad, std::nullopt) << "nobody knows";
  const auto write = [&](const fs::path& path, std::initializer_list<std::uint32_t> words) {
    writeFile(path, bytesOf(words, /*isBigEndian=*/true));
  };
  const fs::path offered = machine_.payload("PHOTOSHOP_PLUGINS/Corvane/Grain.plugin/Contents/MacOS/Grain");
  const std::string application = "/Applications/Adobe Photoshop CS6/Adobe Photoshop CS6.app";
  makeBundle(on(application), {{"CFBundleShortVersionString", "13.0.1"}, {"CFBundleExecutable", "Photoshop"}});
  write(on(application + "/Contents/MacOS/Photoshop"), {0xCAFEBABE, 2, intel, 3, 0, 0, 0, apple, 0, 0, 0, 0});
  write(offered, {0xFEEDFACF, intel, 3, 0, 0, 0, 0, 0});
  EXPECT_EQ(facts().application, application);
  EXPECT_EQ(facts().version, "13.0.1");
  EXPECT_EQ(facts().canLoad, false) << "a native host does not load code for Intel only";
  ASSERT_EQ(facts().problems.size(), 1U);
  EXPECT_EQ(facts().problems[0].detail, "arm64");
  write(offered, {0xCAFEBABE, 2, apple, 0, 0, 0, 0, intel, 3, 0, 0, 0});
  EXPECT_EQ(facts().canLoad, true);

  makeBundle(on(application), {{"CFBundleShortVersionString", "12.9"}, {"CFBundleExecutable", "Photoshop"}});
  EXPECT_EQ(facts().problems.at(0).kind, LoadingProblem::Kind::hostVersion);
  makeBundle(on(application), {{"CFBundleShortVersionString", "13"}, {"CFBundleExecutable", "Photoshop"}});
  EXPECT_EQ(facts().problems.size(), 0U);

  const std::string older = "/Library/Application Support/Adobe/Plug-Ins/CC/Old/Grain.plugin";
  makeBundle(on(older), {{"CFBundleVersion", "2.9"}});
  ASSERT_EQ(facts().problems.size(), 1U);
  EXPECT_EQ(facts().problems[0].path, older);
  EXPECT_EQ(facts().canLoad, true) << "but perhaps not this one";
}

}  // namespace
