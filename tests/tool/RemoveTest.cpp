// SPDX-License-Identifier: Apache-2.0

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <sstream>

#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"
#include "tool/MunkiItem.h"
#include "tool/RemovalPlan.h"
#include "tool/Tool.h"
#include "tool/VolumeState.h"

namespace {

/// The tool on a machine with a product of a bundle, a folder, a file, and items in a host.
class RemoveTest : public MachineTest {
 protected:
  RemoveTest() {
    machine_.addPhotoshop("Adobe Photoshop CS6");
    makeBundle(machine_.payload("HD/Applications/Studio.app"), {{"CFBundleIdentifier", "com.corvane.studio"}});
    writeFile(machine_.payload("HD/Applications/Studio.app/Contents/MacOS/Studio"), "#!/bin/sh\n");
    fs::permissions(machine_.payload("HD/Applications/Studio.app/Contents/MacOS/Studio"), fs::perms(0755));
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/Presets/night.preset"), "night");
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/Presets/Old/day.preset"), "day");
    makeBundle(machine_.payload("PHOTOSHOP_PLUGINS/Corvane/Grain.plugin"), {{"CFBundleVersion", "3.1"}});
    writeFile(machine_.payload("PHOTOSHOP_PLUGINS/Dunmore 30/bridge.js"), "bridge");
    writeFile(machine_.payload("PHOTOSHOP_PLUGINS/Panels/panel.js"), "panel");
    writeFile(on("/Applications/Other.app/Contents/MacOS/Other"), "somebody else's");
    before_ = stateOf(on(""));
    InstallFilesController controller(platform_);
    controller.install(HostsModel(platform_).foundHosts(), /*shouldConfigureLumatraExternalEditors=*/true);
    EXPECT_FALSE(controller.fileOpErrorOccurred());
  }

  struct Answer {
    int status;
    std::string output;
    std::string errors;
  };
  Answer run(ToolRequest request, const std::string& typed = "") {
    struct System : SystemPlatform {
      explicit System(Platform& p) : itself(p) {}
      Platform& platform() override { return itself; }
      [[nodiscard]] std::string shownPath(const std::string& path) const override { return path; }
      Platform& itself;
    };
    System system(platform_);
    std::istringstream input(typed);
    std::ostringstream output;
    std::ostringstream errors;
    const int status = runTool(request, system, {input, output, errors});
    return {status, output.str(), errors.str()};
  }
  Answer remove(bool keepsChanged = false) {
    return run({.command = ToolRequest::Command::remove, .isConfirmed = true, .keepsChanged = keepsChanged});
  }
  [[nodiscard]] State now() const { return stateOf(on("")); }

  const std::string log_ = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const std::string presets_ = "/Library/Application Support/Corvane/Dunmore 3/Presets";
  const std::string plugIns_ = "/Applications/Adobe Photoshop CS6/Plug-Ins";
  State before_;
};

TEST_F(RemoveTest, RestoresTheVolumeButForWhatItTellsOf) {
  EXPECT_TRUE(fs::exists(machine_.inLibrary("../.local/share/applications/com.corvane.studio.desktop")));
  const auto installed = now();
  const Answer trial = run({.command = ToolRequest::Command::remove, .isTrial = true});
  EXPECT_EQ(trial.status, 0);
  EXPECT_EQ(now(), installed);
  auto& steps = machine_.authorizations.transaction.steps;
  steps.clear();
  const Answer answer = remove();
  EXPECT_EQ(answer.status, 0) << answer.output << answer.errors;
  EXPECT_EQ(differences(before_, now()), (Paths{plugIns_ + "/Dunmore 30", plugIns_ + "/Panels"}))
      << "neither folder has the product's name";
  EXPECT_NE(answer.output.find("kept: " + plugIns_ + "/Panels: an empty folder"), std::string::npos) << answer.output;
  EXPECT_FALSE(fs::exists(machine_.inLibrary("../.local/share/applications/com.corvane.studio.desktop")));
  EXPECT_EQ(remove().status, 0) << "nothing is left";
  EXPECT_EQ(steps.front(), "stage " + plugIns_ + "/Panels/panel.js") << "newest first";
}

TEST_F(RemoveTest, AsksAndChangesNothingWithoutAnAnswer) {
  const auto installed = now();
  const ToolRequest request{.command = ToolRequest::Command::remove};
  EXPECT_EQ(run(request, "no\n").status, 1);
  EXPECT_EQ(run(request).status, 69) << "nobody is there";
  EXPECT_EQ(now(), installed);
  const Answer answer = run(request, "yes\n");
  EXPECT_EQ(answer.status, 0) << answer.output;
  EXPECT_NE(answer.output.find("to be removed: /Applications/Studio.app"), std::string::npos);
  EXPECT_FALSE(fs::exists(on("/Applications/Studio.app")));
}

TEST_F(RemoveTest, KeepsWhatIsNotTheProducts) {
  writeFile(on(presets_ + "/Old/mine.preset"), "mine");
  writeFile(on(presets_ + "/night.preset"), "changed");
  writeFile(on(plugIns_ + "/Corvane/Grain.plugin/Contents/licence"), "bought");
  fs::remove_all(on("/Applications/Studio.app"));
  fs::create_symlink("Other.app", on("/Applications/Studio.app"));
  const Answer answer = remove(/*keepsChanged=*/true);
  EXPECT_EQ(answer.status, 1);
  EXPECT_EQ(readFile(on(presets_ + "/Old/mine.preset")), "mine");
  EXPECT_EQ(namesIn(on(presets_)), "Old night.preset");
  EXPECT_EQ(namesIn(on(presets_ + "/Old")), "mine.preset");
  EXPECT_EQ(namesIn(on(plugIns_ + "/Corvane/Grain.plugin/Contents")), "licence");
  EXPECT_TRUE(fs::is_symlink(on("/Applications/Studio.app")));
  EXPECT_EQ(readFile(on("/Applications/Other.app/Contents/MacOS/Other")), "somebody else's");
  EXPECT_EQ(readFile(on(log_)), "/Applications/Studio.app\n" + presets_ + "\n") << "what is still the product's";

  fs::remove(on("/Applications/Studio.app"));
  const Answer changed = remove();
  EXPECT_NE(changed.output.find("changed since the install: " + presets_ + "/night.preset"), std::string::npos);
  EXPECT_EQ(namesIn(on(presets_)), "Old");
  EXPECT_FALSE(fs::exists(on(log_)));
}

TEST_F(RemoveTest, ATamperedLogHarmsNothing) {
  const std::string picked = "/Users/Shared/Mine/Corvane/Grain.plugin";
  const std::string planted = "/Users/Shared/Other/Panels/panel.js";
  fs::create_directories(on(picked).parent_path());
  fs::copy(on(plugIns_ + "/Corvane/Grain.plugin"), on(picked), fs::copy_options::recursive);
  writeFile(on(planted), "not the product's panel");
  TemporaryFolder outside;
  writeFile(outside.path() / "Panels/panel.js", "panel");
  fs::create_directory_symlink(outside.path(), on("/Library/leads out"));
  const Paths nasty = {"/",
                       "/Applications",
                       "/Library",
                       "/Library/Application Support",
                       "/Users",
                       machine_.home(),
                       "",
                       "/Applications/Other.app",
                       "/Applications/Adobe Photoshop CS6",
                       plugIns_,
                       "relative/path",
                       "/Applications/../Library",
                       "/Library/leads out",
                       "/Library/leads out/Panels/panel.js",
                       "/Applications/./Other.app",
                       "/Panels/panel.js",
                       planted,
                       "/Library/Application Support/Corvane",
                       "/Applications//Other.app",
                       log_,
                       std::string("/Applications/Other.app\0/x", 26)};
  std::string lines;
  for (const std::string& path : nasty) lines += path + "\n";
  const auto installed = now();
  writeFile(on(log_), lines + picked);
  const Answer answer = remove();
  EXPECT_EQ(answer.status, 1);
  Paths changed = differences(installed, now());
  std::erase_if(changed, [&](const std::string& path) { return path == log_; });
  EXPECT_EQ(changed, (Paths{"/Library/Application Support/Corvane/Lumatra X", "/Users/Shared/Mine/Corvane", picked,
                            picked + "/Contents", picked + "/Contents/Info.plist"}))
      << "an empty folder of the product, and an unchanged item of it in a folder that a person picked";
  EXPECT_EQ(readFile(outside.path() / "Panels/panel.js"), "panel");

  // The log itself leads elsewhere.
  fs::remove(on(log_));
  fs::create_symlink("/Applications/Other.app/Contents/MacOS/Other", on(log_));
  static_cast<void>(remove());
  EXPECT_EQ(readFile(on("/Applications/Other.app/Contents/MacOS/Other")), "somebody else's");
}

TEST_F(RemoveTest, IsAllOrNothingAndTellsWhatFails) {
  const auto installed = now();
  auto& script = machine_.authorizations.transaction;
  machine_.authorizations.statusOfTransactions = errAuthorizationCanceled;
  EXPECT_EQ(remove().status, 77);
  machine_.authorizations.statusOfTransactions = launchSucceeded;
  machine_.authorizations.canBeObtained = false;
  EXPECT_EQ(remove().status, 77);
  machine_.authorizations.canBeObtained = true;
  machine_.interruptions.signal = 15;
  EXPECT_EQ(remove().status, 143);
  machine_.interruptions.signal = std::nullopt;
  script.faults = {{"flush", std::errc::io_error}};
  EXPECT_EQ(remove().status, 74);
  EXPECT_EQ(now(), installed);

  script.before = [&](const std::string& step) {
    EXPECT_TRUE(now().contains("/Applications/Studio.app")) << step;
    if (step.starts_with("commit")) script.before = [](const std::string&) {};
  };
  script.faults = {{"stage " + presets_, std::errc::operation_not_permitted},
                   {"stage /Library/Application Support/Corvane/Dunmore 3", std::errc::operation_not_permitted}};
  const Answer answer = remove();
  EXPECT_EQ(answer.status, 1) << answer.output;
  EXPECT_NE(answer.output.find("Operation not permitted"), std::string::npos) << answer.output;
  EXPECT_FALSE(fs::exists(on("/Applications/Studio.app"))) << "the others go";
  EXPECT_TRUE(fs::exists(on(presets_ + "/night.preset")));
  script.faults.clear();
  EXPECT_EQ(remove().status, 0) << "the log has kept it";
  EXPECT_FALSE(fs::exists(on("/Library/Application Support/Corvane")));
}

TEST_F(RemoveTest, AnswersInJson) {
  using nlohmann::json;
  const auto ask = [&](ToolRequest::Command command) {
    ToolRequest request{.command = command, .isJson = true, .isConfirmed = true};
    return json::parse(run(request).output);
  };
  const json plan = ask(ToolRequest::Command::plan);
  EXPECT_EQ(plan.at("version"), 1);
  EXPECT_EQ(plan.at("changes"), 0);
  EXPECT_EQ(plan.at("items").at(0).at("target"), "/Applications/Studio.app");
  EXPECT_EQ(plan.at("items").at(0).at("fate"), "replaced");
  EXPECT_GT(plan.at("items").at(0).at("bytes"), 10);
  EXPECT_EQ(plan.at("hosts").at(0).at("name"), "Adobe Photoshop CS6");
  EXPECT_GT(plan.at("space").at(0).at("required"), 1000);
  EXPECT_EQ(ask(ToolRequest::Command::hosts).at("hosts").at(0).at("canLoad"), nullptr);
  writeFile(on(plugIns_ + "/Corvane/Grain.plugin/Contents/\xFF"), "");
  const json verify = ask(ToolRequest::Command::verify);
  EXPECT_EQ(verify.at("differences").at(0).at("kind"), "extra");
  EXPECT_EQ(verify.at("differences").at(0).at("path"), plugIns_ + "/Corvane/Grain.plugin/Contents/\uFFFD");
  const json removal = ask(ToolRequest::Command::remove);
  EXPECT_EQ(removal.at("isDone"), true);
  EXPECT_EQ(removal.at("kept").at(0).at("reason"), "foreign");
}

}  // namespace
