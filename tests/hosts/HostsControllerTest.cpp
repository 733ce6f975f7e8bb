// SPDX-License-Identifier: Apache-2.0

#include "hosts/HostsController.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class HostsControllerTest : public MachineTest {
 protected:
  HostsControllerTest() {
    parent_->addSubview(view_);
    observation_ = controller_.observe([this](std::string_view key, auto moment) {
      main_.announced += (moment == KeyValueObserving::Moment::willChange ? "+own." : "-own.") + std::string(key) + " ";
    });
    main_.found = {lightroom_, photoshop_};
  }

  void enter() { controller_.didEnterWithModel(model_, view_, &main_, 1); }
  /// On the page with both hosts and the custom screen open.
  void open() {
    enter();
    controller_.performAction("buttonPressed:", "customInstallButton");
    main_.announced.clear();
  }
  /// Which screens can be seen, and whether the one that the page takes for the shown one is among them.
  [[nodiscard]] std::string shown() {
    std::string text = view_->isHidden ? "" : controller_.currentView() == view_ ? "list" : "(list)";
    if (machine_.toolkit.interfaces.empty()) return text;
    const auto custom = machine_.toolkit.interfaces.back()->view("customInstallView");
    if (!custom->isHidden) text += controller_.currentView() == custom ? "custom" : "(custom)";
    return text;
  }
  [[nodiscard]] UnknownHostModel& customHost() const { return dynamic_cast<UnknownHostModel&>(*main_.found.back()); }
  [[nodiscard]] std::string selected() const {
    std::string names;
    for (const auto& host : main_.found) names += host->hostIsSelected() ? host->hostName() + " " : "";
    return names;
  }

  RecordingMainController main_;
  std::shared_ptr<HostsModel> model_ = std::make_shared<HostsModel>(platform_);
  std::shared_ptr<HostModel> lightroom_ = LightRoomHostModel::initWithHostName(platform_, "Lightroom");
  std::shared_ptr<HostModel> photoshop_ = PhotoshopHostModel::initWithHostName(platform_, "Photoshop CC 2019");
  std::shared_ptr<RecordingView> parent_ = std::make_shared<RecordingView>();
  std::shared_ptr<RecordingView> view_ = std::make_shared<RecordingView>();
  HostsController controller_{platform_};
  KeyValueObserving::Observation observation_;
};

TEST_F(HostsControllerTest, OpensOnTheCustomScreenWithoutHostsOrPassesItself) {
  main_.found.clear();
  main_.isRecommended = false;
  main_.onNextView = [&] { controller_.didProceed(1); };  // as the wizard does, within the entry
  view_->isHidden = false;
  enter();
  EXPECT_EQ(main_.announced + shown(), "next ");

  main_.isAllowed = true;
  enter();
  EXPECT_EQ(shown() + " " + selected(), "custom Folder ");
  EXPECT_EQ(parent_->subviews.size(), 2U) << "beside the list";
  controller_.didProceed(1);
  enter();
  EXPECT_EQ(shown(), "custom") << "with the custom host as the only one";
  EXPECT_EQ(machine_.toolkit.interfaces.size(), 1U) << "and nothing is loaded again";
  main_.found.push_back(photoshop_);
  enter();
  EXPECT_EQ(shown(), "list");
}

TEST_F(HostsControllerTest, GoesToTheCustomScreenAndBack) {
  enter();
  controller_.performAction("buttonPressed:", "customInstallButton");
  EXPECT_EQ(main_.announced,
            "+enableForward -enableForward +own.customPath +own.customPath64 +enableForward "
            "-own.customPath -own.customPath64 -enableForward ");
  EXPECT_EQ(shown() + " " + selected(), "custom Folder ") << "no other host";
  EXPECT_TRUE(main_.isChosen);
  EXPECT_TRUE(controller_.willBranch(-1));
  EXPECT_FALSE(controller_.willBranch(1));

  const auto custom = main_.found.back();
  EXPECT_TRUE(controller_.overrideBackButton("back"));
  EXPECT_EQ(shown() + " " + selected(), "list Lightroom Photoshop CC 2019 ");
  EXPECT_TRUE(custom->hostIsSelected()) << "the one that is no longer in the list, too";
  EXPECT_FALSE(main_.isChosen);
  EXPECT_FALSE(controller_.willBranch(1));
  EXPECT_FALSE(controller_.overrideBackButton("back"));

  main_.isAllowed = true;
  controller_.performAction("checkboxClicked:", "tick");
  EXPECT_TRUE(main_.isAllowed) << "a tick in the list ends custom install only where it is chosen";
  main_.isChosen = true;
  controller_.performAction("checkboxClicked:", "tick");
  EXPECT_FALSE(main_.isAllowed);
  EXPECT_FALSE(main_.isChosen);
}

TEST_F(HostsControllerTest, EnablesForwardOnceThereIsSomethingToInstallSomewhere) {
  open();
  EXPECT_FALSE(controller_.enableForward()) << "no folder";
  customHost().setPlugInPath("/Mine");
  EXPECT_TRUE(controller_.enableForward());
  controller_.setShownValue("installPluginForCustomInstall", false);
  EXPECT_EQ(main_.announced, "+enableForward -enableForward +own.customPath -own.customPath ");
  EXPECT_FALSE(controller_.enableForward()) << "nothing chosen";
  for (const char* const choice : {"installScriptsAndPanelsChosen", "installPlugin64ForCustomInstall"}) {
    controller_.setShownValue(choice, true);
    EXPECT_TRUE(controller_.enableForward()) << choice;
    controller_.setShownValue(choice, false);
  }
  static_cast<void>(controller_.overrideBackButton("back"));
  EXPECT_TRUE(controller_.enableForward()) << "on the list, always";
}

TEST_F(HostsControllerTest, TakesAFolderFromTheBrowsePanel) {
  open();
  controller_.performAction("browseButtonPressed:", "browseButton");
  EXPECT_EQ(main_.announced, "") << "cancelled";
  machine_.toolkit.chosenFolder = "/Applications/Own";
  controller_.performAction("browseButtonPressed:", "browseButton");
  EXPECT_EQ(main_.announced, "+own.customPath +enableForward +foundHosts -own.customPath -enableForward -foundHosts ");
  controller_.browseButtonPressed("browseButton");
  const auto& panels = machine_.toolkit.panels;
  EXPECT_EQ(panels.at(1).startFolder + ", " + panels.at(2).startFolder, machine_.home() + ", /Applications/Own");
  EXPECT_EQ(panels[0].title + panels[0].message + panels[0].prompt, "TitleMessagePrompt");

  fs::create_directories(on("/Applications/Own/Folder.plugin"));
  fs::create_directories(on("/Applications/X.app/Contents"));
  writeFile(on("/Applications/file"), "");
  fs::create_directory_symlink("Own", on("/Applications/link"));
  EXPECT_TRUE(panels[0].shouldShowFilename("/Applications/Own/Folder.plugin"));
  for (const char* const hidden : {"/Applications/X.app", "/Applications/file", "/Applications/link", "/Missing"}) {
    EXPECT_FALSE(panels[0].shouldShowFilename(hidden)) << hidden;
  }
}

TEST_F(HostsControllerTest, WritesTheChoicesIntoTheCustomHostAndRemembersItsFolder) {
  for (const bool withPlugIn : {true, false}) {
    HostsController page(platform_);
    main_.found = {lightroom_};
    page.didEnterWithModel(model_, view_, &main_, 1);
    page.buttonPressed("customInstallButton");
    UnknownHostModel& custom = customHost();
    EXPECT_EQ(custom.plugInPath(), withPlugIn ? "" : "/Mine") << "as it was the last time";
    custom.setPlugInPath("/Mine");
    custom.setShouldInstallPanels(true);
    page.setInstallPluginForCustomInstall(withPlugIn);
    page.setInstallScriptsAndPanelsChosen(true);
    main_.selected = main_.found;
    page.didProceed(1);
    EXPECT_FALSE(custom.shouldInstallPanels());
    EXPECT_FALSE(custom.shouldInstallScripts());
    EXPECT_EQ(custom.shouldInstallPlugIns(), withPlugIn);
    const std::string kept = readFile(machine_.inLibrary("Preferences/com.corvane.installer.plist"));
    EXPECT_NE(kept.find("/Mine"), std::string::npos) << "on the disk, should a signal end the program";
  }
}

}  // namespace
