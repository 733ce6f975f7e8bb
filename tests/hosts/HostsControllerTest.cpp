#include "hosts/HostsController.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class HostsControllerTest : public MachineTest {
 protected:
  HostsControllerTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/Localizable.strings"), R"(
        browse_path_msg = Message; browse_path_prompt = Prompt; browse_path_title = Title; custom_path = Folder;
        custom_install_browse_button = Browse; custom_install_label_path = Path; custom_install_button = Custom;
        custom_install_panels_checkbox = Panels; custom_install_host_label = Hosts;)");
    model_ = std::make_shared<HostsModel>(platform_);
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
    controller_.buttonPressed("customInstallButton");
    main_.announced.clear();
  }
  [[nodiscard]] std::shared_ptr<RecordingView> customView() {
    const auto& made = machine_.toolkit.interfaces;
    return made.empty() ? nullptr : made.back()->view("customInstallView");
  }
  /// Which screens can be seen, and whether the one that the page takes for the shown one is among them.
  [[nodiscard]] std::string shown() {
    std::string text;
    if (!view_->isHidden) text += controller_.currentView() == view_ ? "list" : "(list)";
    const auto custom = customView();
    if (custom != nullptr && !custom->isHidden) text += controller_.currentView() == custom ? "custom" : "(custom)";
    return text;
  }
  [[nodiscard]] std::shared_ptr<UnknownHostModel> customHost() const {
    return std::dynamic_pointer_cast<UnknownHostModel>(main_.found.back());
  }
  [[nodiscard]] std::string selected() const {
    std::string names;
    for (const auto& host : main_.found) names += host->hostIsSelected() ? host->hostName() + " " : "";
    return names;
  }
  [[nodiscard]] Value remembered() {
    return machine_.platform.preferences.copyAppValue("customPath", "com.corvane.installer");
  }
  void remember(const std::string& path) {
    machine_.platform.preferences.setAppValue("customPath", path, "com.corvane.installer");
  }
  template <class T>
  [[nodiscard]] T value(std::string_view key) const {
    return std::get<T>(controller_.shownValue(key));
  }

  RecordingMainController main_;
  std::shared_ptr<HostsModel> model_;
  std::shared_ptr<HostModel> lightroom_ = LightRoomHostModel::initWithHostName(platform_, "Lightroom");
  std::shared_ptr<HostModel> photoshop_ = PhotoshopHostModel::initWithHostName(platform_, "Photoshop CC 2019");
  std::shared_ptr<RecordingView> parent_ = RecordingView::make();
  std::shared_ptr<RecordingView> view_ = RecordingView::make();
  HostsController controller_{platform_};
  KeyValueObserving::Observation observation_;
};

TEST_F(HostsControllerTest, PassesItselfWithNothingToOffer) {
  main_.found.clear();
  main_.isRecommended = false;
  main_.onNextView = [&] { controller_.didProceed(1); };  // as the wizard does, within the entry
  view_->isHidden = false;
  enter();
  EXPECT_EQ(main_.announced, "next ");
  EXPECT_EQ(shown(), "");
  EXPECT_EQ(view_.use_count(), 2) << "ours and its parent's";

  main_.isAllowed = true;
  enter();
  EXPECT_EQ(shown(), "custom");
}

TEST_F(HostsControllerTest, OpensOnTheCustomScreenWithoutHosts) {
  main_.found.clear();
  enter();
  EXPECT_EQ(shown(), "custom");
  EXPECT_EQ(selected(), "Folder ");
  EXPECT_TRUE(main_.isChosen);
  EXPECT_EQ(parent_->subviews.size(), 2U) << "beside the list";
  controller_.didProceed(1);
  EXPECT_EQ(shown(), "");
  main_.announced.clear();
  enter();
  EXPECT_EQ(shown(), "custom") << "with the custom host as the only one";
  EXPECT_EQ(main_.announced, "");
  EXPECT_EQ(machine_.toolkit.interfaces.size(), 1U) << "and nothing is loaded again";

  main_.found.push_back(photoshop_);
  enter();
  EXPECT_EQ(shown(), "list");
}

TEST_F(HostsControllerTest, GoesToTheCustomScreenAndBack) {
  remember("/Mine");
  enter();
  controller_.performAction("buttonPressed:", "customInstallButton");
  EXPECT_EQ(main_.announced,
            "+enableForward -enableForward +own.customPath +own.customPath64 +enableForward "
            "-own.customPath -own.customPath64 -enableForward ");
  EXPECT_EQ(shown(), "custom");
  EXPECT_EQ(selected(), "Folder ") << "no other host";
  EXPECT_EQ(customHost()->plugInPath(), "/Mine");
  EXPECT_EQ(value<std::string>("customPath"), "/Mine");
  EXPECT_TRUE(main_.isChosen && controller_.willBranch(-1) && !controller_.willBranch(1));

  main_.announced.clear();
  const auto custom = customHost();
  EXPECT_TRUE(controller_.overrideBackButton("back"));
  EXPECT_EQ(main_.announced,
            "+own.customPath +own.customPath64 +enableForward -own.customPath -own.customPath64 -enableForward ");
  EXPECT_EQ(shown(), "list");
  EXPECT_EQ(selected(), "Lightroom Photoshop CC 2019 ");
  EXPECT_TRUE(custom->hostIsSelected()) << "the one that is no longer in the list, too";
  EXPECT_FALSE(main_.isChosen || controller_.willBranch(1) || controller_.overrideBackButton("back"));
  EXPECT_EQ(controller_.customPath(), "");
}

TEST_F(HostsControllerTest, EnablesForwardOnceThereIsSomethingToInstallSomewhere) {
  open();
  EXPECT_FALSE(controller_.enableForward()) << "no folder";
  customHost()->setPlugInPath("/Mine");
  EXPECT_TRUE(controller_.enableForward());

  controller_.setShownValue("installPluginForCustomInstall", false);
  EXPECT_EQ(main_.announced, "+enableForward -enableForward +own.customPath -own.customPath ");
  EXPECT_FALSE(controller_.enableForward()) << "nothing chosen";
  EXPECT_EQ(controller_.customPath(), "");
  main_.announced.clear();
  controller_.setShownValue("installScriptsAndPanelsChosen", true);
  EXPECT_EQ(main_.announced, "+enableForward -enableForward ");
  EXPECT_TRUE(controller_.enableForward());
  EXPECT_TRUE(value<std::vector<ListRow>>("scriptsOrPanelsHosts").empty());
  controller_.setShownValue("installScriptsAndPanelsChosen", false);
  controller_.setShownValue("installPlugin64ForCustomInstall", true);
  EXPECT_TRUE(controller_.enableForward());

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
  EXPECT_EQ(controller_.customPath(), "/Applications/Own");
  controller_.browseButtonPressed("browseButton");
  const auto& panels = machine_.toolkit.panels;
  ASSERT_EQ(panels.size(), 3U);
  EXPECT_EQ(panels[1].startFolder + ", " + panels[2].startFolder, machine_.home() + ", /Applications/Own");
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
  open();
  const auto custom = customHost();
  custom->setPlugInPath("/Mine");
  custom->setShouldInstallPanels(true);
  custom->setShouldInstallScripts(true);
  controller_.setInstallScriptsAndPanelsChosen(true);
  main_.selected = {lightroom_};
  controller_.didProceed(1);
  EXPECT_TRUE(remembered().isNone()) << "it is not selected";
  EXPECT_EQ(shown(), "");

  main_.selected = {lightroom_, custom};
  enter();
  controller_.didProceed(1);
  EXPECT_EQ(remembered(), Value("/Mine"));
  EXPECT_FALSE(custom->shouldInstallPanels() || custom->shouldInstallScripts());
  EXPECT_TRUE(custom->shouldInstallPlugIns());
  enter();
  controller_.setInstallPluginForCustomInstall(false);
  custom->setPlugInPath("/Other");
  controller_.didProceed(1);
  EXPECT_FALSE(custom->shouldInstallPlugIns());
  EXPECT_EQ(remembered(), Value("/Other")) << "without the plug-in, too";
}

TEST_F(HostsControllerTest, EndsCustomInstallAtAClickOnACheckBox) {
  main_.isAllowed = true;
  enter();
  controller_.performAction("checkboxClicked:", "tick");
  EXPECT_EQ(main_.announced, "+enableForward -enableForward ");
  EXPECT_TRUE(main_.isAllowed) << "only where it is chosen";
  open();
  controller_.performAction("checkboxClicked:", "tick");
  EXPECT_FALSE(main_.isAllowed || main_.isChosen);
}

}  // namespace
