// SPDX-License-Identifier: Apache-2.0

#include "shell/SetupControllerTest.h"

#include "kit/WindowNames.h"
#include "payload/InstallerTexts.h"
#include "steps/PageController.h"

namespace {

TEST_F(SetupControllerTest, LeavesAPageBeforeItEntersTheNext) {
  struct NotingPage : PageController {
    NotingPage(std::string ownName, std::string& noted) : name(std::move(ownName)), order(noted) {}
    void didProceed(std::int32_t delta) override { order += "left " + name + " " + std::to_string(delta) + ", "; }
    void didEnterWithModel(std::shared_ptr<SetupStepModel> /*model*/, std::shared_ptr<View> /*withView*/,
                           SetupMainController* /*main*/, std::int32_t direction) override {
      order += "entered " + name + " " + std::to_string(direction) + ", ";
    }
    std::string name;
    std::string& order;
  };
  std::string order;
  start();
  wizard_->addStep(nullptr, std::make_shared<NotingPage>("licence", order), nullptr, 0);
  wizard_->addStep(nullptr, std::make_shared<NotingPage>("hosts", order), nullptr, 1);
  press("nextView:");
  press("previousView:");
  EXPECT_EQ(order, "left licence 1, entered hosts 1, left hosts -1, entered licence -1, ");
}

TEST_F(SetupControllerTest, AnnouncesInnerTransitionsInsideOuterOnes) {
  machine_.addPhotoshop("Adobe Photoshop CS6");
  startAtHosts();
  machine_.workspace.running = {"Photoshop CS6"};
  const std::string will = "+enableForward +enableBackward +mainLabelText +informativeText +successfulInstall ";
  const std::string did = "-enableForward -enableBackward -mainLabelText -informativeText -successfulInstall ";
  const std::string captions = "+goBackwardsText -goBackwardsText +goForwardText -goForwardText ";
  announced_.clear();
  press("nextView:");
  EXPECT_EQ(announced_, will + "+enableForward -enableForward " + captions + did);

  machine_.workspace.end("Photoshop CS6");
  press("previousView:");
  announced_.clear();
  press("nextView:");
  EXPECT_TRUE(
      announced_.starts_with(will + "+enableForward -enableForward " + will + "+enableForward +enableBackward "))
      << announced_;
  const std::string ends = captions + did;
  EXPECT_TRUE(announced_.ends_with(ends + "-successfulInstall " + ends + ends)) << announced_;
}

TEST_F(SetupControllerTest, DropsWhatIsAskedForWhileItInstalls) {
  machine_.addPhotoshop("Adobe Photoshop CS6");
  startAtHosts();
  int launches = 0;
  machine_.authorizations.beforeLaunch = [&] {
    ++launches;
    for (const char* const action : {"nextView:", "previousView:", "subViewButtonPress:"}) press(action);
    EXPECT_FALSE(wizard_->textShouldChange("\n"));
    EXPECT_TRUE(wizard_->copyInProgress());
    EXPECT_FALSE(wizard_->windowShouldClose());
    wizard_->setTicked("foundHosts", 0, false);
  };
  // As the buttons are enabled again, before the page has moved on by itself.
  const auto late = wizard_->observe([&](std::string_view key, KeyValueObserving::Moment moment) {
    if (key == "copyInProgress" && moment == KeyValueObserving::Moment::didChange) press("nextView:");
  });
  press("nextView:");
  EXPECT_GT(launches, 0);
  EXPECT_EQ(shown(), "The end [-Back|Finish] registerView");
  EXPECT_TRUE(wizard_->windowShouldClose());
  EXPECT_TRUE(wizard_->selectedHosts().size() == 1);
  EXPECT_EQ(log_.count("Installing Filter.plugin"), 1);
}

TEST_F(SetupControllerTest, OffersAFolderWhereNothingIsFound) {
  startAtHosts();
  EXPECT_EQ(machine_.toolkit.interfaces.back()->name, "CustomInstall");
  EXPECT_FALSE(wizard_->enableForward()) << "no folder yet";
  EXPECT_TRUE(wizard_->isCustomInstallChosen());
  EXPECT_EQ(window_->view("foundHostsController")->selectedRow, 0U);
  machine_.toolkit.chosenFolder = "/Users/Shared";
  wizard_->objectForKey("hostsController")->performAction("browseButtonPressed:", "browse");
  EXPECT_TRUE(wizard_->enableForward());
  press("nextView:");
  EXPECT_EQ(shown(), "The end [-Back|Finish] registerView");
  EXPECT_EQ(readFile(on("/Users/Shared/Filter.plugin/Contents/x")), "x");
}

TEST_F(SetupControllerTest, ShowsNamesThatNoFolderCanHave) {
  writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"),
            "company_name = \"A/B\"; product_name = \"Black/White 3\"; app_plist = x;");
  SetupController wizard(platform_);
  EXPECT_EQ(wizard.windowTitle(), "Black/White 3 Setup");
  EXPECT_EQ(InstallFilesModel(platform_).mainLabelText(), "Installing A/B");
  EXPECT_EQ(companyName(platform_) + productName(platform_), "Black:White 3") << "as the name of a folder";
}

TEST_F(SetupControllerTest, WalksThroughAllPagesWithoutAnyOneOfTheViews) {
  machine_.addPhotoshop("Adobe Photoshop CS6");
  for (const std::string view : {"stepIndicatorView", "foundHostsController", "licenseView", "hostsView", "rtfView",
                                 "installFilesView", "registerView", "customInstallView"}) {
    machine_.toolkit.missingViews = {view};
    machine_.toolkit.interfaces.clear();
    log_.lines.clear();
    machine_.workspace.running = {"Photoshop CS6"};
    startAtHosts();
    press("subViewButtonPress:");  // opens the custom screen
    press("previousView:");
    EXPECT_TRUE(wizard_->enableForward()) << view;
    if (wizard_->mainLabelText() != "Choose") press("nextView:");  // there was nothing to come back from
    press("nextView:");
    EXPECT_EQ(wizard_->mainLabelText(), "Quit it") << view;
    machine_.workspace.end("Photoshop CS6");
    press("nextView:");
    EXPECT_EQ(wizard_->mainLabelText(), "The end") << view;
    EXPECT_TRUE(wizard_->successfulInstall()) << view;
    EXPECT_GE(log_.count(view), 1) << view;
  }
  machine_.toolkit.missingViews = {"dynamicView"};
  const Status shown = SetupController(platform_).loadMainWindow();
  ASSERT_FALSE(shown);
  EXPECT_NE(shown.error().description().find("dynamicView"), std::string::npos) << shown.error().description();
}

TEST_F(SetupControllerTest, StaysUsableWhenAPageRaisesAnException) {
  struct BrokenPage : PageController {
    void didProceed(std::int32_t /*delta*/) override { throw std::out_of_range("cannot leave"); }
    void didEnterWithModel(std::shared_ptr<SetupStepModel> /*model*/, std::shared_ptr<View> /*withView*/,
                           SetupMainController* /*main*/, std::int32_t /*direction*/) override {
      throw std::logic_error("cannot enter");
    }
  };
  machine_.addPhotoshop("Adobe Photoshop CS6");
  start();
  wizard_->addStep(nullptr, std::make_shared<BrokenPage>(), nullptr, 1);
  press("nextView:");
  EXPECT_EQ(wizard_->mainLabelText(), "Choose");
  announced_.clear();
  press("nextView:");
  EXPECT_EQ(wizard_->mainLabelText(), "The end");
  EXPECT_EQ(std::ranges::count(announced_, '+'), std::ranges::count(announced_, '-')) << announced_;
  EXPECT_EQ(log_.count("cannot enter"), 1);
  EXPECT_EQ(log_.count("cannot leave"), 1);
}

TEST_F(SetupControllerTest, ShowsPlaceholdersForWhatIsMissing) {
  fs::remove_all(machine_.inBundle("Resources/en.lproj"));
  SetupController bare(platform_);
  EXPECT_EQ(bare.mainLabelText(), "???");
  EXPECT_EQ(bare.goForwardText(), "can't find");
  EXPECT_EQ(bare.licenseText().string() + bare.registerText().string(), "nilnil");
  EXPECT_EQ(bare.informativeText().string(), "");
  EXPECT_FALSE(bare.enableForward());
  EXPECT_FALSE(bare.enableBackward());
  for (const char* const name : {"", "bogus", "goforwardtext"}) {
    EXPECT_FALSE(bare.shownValue(name));
    EXPECT_FALSE(bare.performAction(name, ""));
  }
  bare.performAction("nextView:", "");  // there is no page to ask yet

  machine_.toolkit.missingInterfaces = {"MainWindow"};
  EXPECT_FALSE(bare.loadMainWindow());
  machine_.toolkit.missingInterfaces = {"Step Indicator", "CustomInstall"};
  ASSERT_TRUE(bare.loadMainWindow());
  EXPECT_EQ(bare.mainLabelText(), "");
  EXPECT_EQ(bare.getIndicatorForStep(0), nullptr);
}

/// What is found in order in the description of a window must be answered by its owner.
TEST_F(SetupControllerTest, AnswersToEveryNameThatDescriptionsMayUse) {
  start();
  const auto answers = [this](std::string_view path) {
    InterfaceOwner* owner = wizard_.get();
    for (std::size_t end = 0; owner != nullptr && (end = path.find('.')) != std::string_view::npos;) {
      owner = owner->objectForKey(path.substr(0, end));
      path.remove_prefix(end + 1);
    }
    return owner != nullptr && owner->shownValue(path).has_value();
  };
  for (const DescriptionNames& names : descriptions()) {
    const bool isCustom = names.file == "CustomInstall.ui";
    InterfaceOwner& owner = isCustom ? *wizard_->objectForKey("hostsController") : *wizard_;
    for (const std::string_view key : names.keys) {
      EXPECT_TRUE(answers((isCustom ? "hostsController." : "") + std::string(key))) << key;
    }
    for (const std::string_view action : names.actions) EXPECT_TRUE(owner.performAction(action, "")) << action;
  }
}

}  // namespace
