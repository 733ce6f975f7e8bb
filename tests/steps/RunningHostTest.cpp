#include "hosts/ApertureHostModel.h"
#include "hosts/FireworksHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "steps/RunningHostViewController.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class RunningHostTest : public MachineTest {
 protected:
  RunningHostTest() {
    writeFile(resource("Localizable.strings"),
              "host_running_title = Quit; thank_you = Thanks; running_blue_dot = Running;");
    writeFile(resource("host_running.rtf"), "{\\rtf1 Quit {\\b %HOSTNAME%}, please, %HOSTNAME%.}");
    writeFile(resource("proceed.rtf"), "{\\rtf1 Install %PRODUCTNAME%.}");
    model_ = std::make_shared<RunningHostViewModel>(platform_);
    observation_ = model_->observe([this](std::string_view key, auto moment) {
      EXPECT_EQ(key, "informativeText");
      main_.announced += moment == KeyValueObserving::Moment::willChange ? "(" : ")";
    });
    main_.selected = {lightroom_};
  }
  [[nodiscard]] fs::path resource(const std::string& name) { return machine_.inBundle("Resources/en.lproj/" + name); }
  void addPayload(const std::string& path, const std::string& name) {
    makeBundle(machine_.payload("HD/Applications/" + path), {{"CFBundleName", name}});
  }
  void enter(RunningHostViewController& page, std::int32_t direction = 1) {
    main_.announced.clear();
    page.didEnterWithModel(nullptr, view_, &main_, direction);
  }
  /// Whether a host that is recognised by the text counts as running while an application of the name runs.
  bool blocks(const std::string& applicationName, std::string_view searchString) {
    workspace_.running = {"Finder", applicationName};
    return RunningHostViewController(platform_, model_).isHostRunning(searchString);
  }
  [[nodiscard]] std::string text() const {
    return *model_->mainLabelText() + ": " + model_->informativeText().string();
  }

  RecordingWorkspace& workspace_ = machine_.workspace;
  RecordingMainController main_;
  std::shared_ptr<RunningHostViewModel> model_;
  KeyValueObserving::Observation observation_;
  std::shared_ptr<RecordingView> view_ = RecordingView::make();
  std::shared_ptr<HostModel> lightroom_ = LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom");
  std::shared_ptr<HostModel> folder_ = UnknownHostModel::initWithPlugInPath(platform_, "/Mine");
};

TEST_F(RunningHostTest, RecognisesHostsByPartsOfNames) {
  const auto searched = [](const std::shared_ptr<HostModel>& host) {
    return RunningHostViewController::hostAppSearchString(*host);
  };
  const auto photoshop = [&](const char* name) { return PhotoshopHostModel::initWithHostName(platform_, name); };
  EXPECT_EQ(searched(folder_), "Photoshop");
  EXPECT_EQ(searched(photoshop("Adobe Photoshop CC 2019")), "Photoshop");
  EXPECT_EQ(searched(photoshop("Adobe Photoshop Elements 2019")), "Elements");
  EXPECT_EQ(searched(lightroom_), "Lightroom");
  EXPECT_EQ(searched(ApertureHostModel::initWithHostName(platform_, "Aperture")), "Aperture");
  EXPECT_EQ(searched(FireworksHostModel::initWithHostName(platform_, "Adobe Fireworks CS6")), "Aperture");
}

TEST_F(RunningHostTest, TellsTheNamesThatCount) {
  EXPECT_TRUE(blocks("Photoshop", "Photoshop") && blocks("Photoshop CS6", "Photoshop"));
  EXPECT_TRUE(blocks("Photoshop Installer", "Photoshop")) << "only the start of the name counts";
  EXPECT_FALSE(blocks("Adobe Photoshop 2020", "Photoshop") || blocks("photoshop", "Photoshop"));
  EXPECT_TRUE(blocks("Adobe Photoshop Elements 11", "Elements") && blocks("Adobe Lightroom", "Lightroom"));
  EXPECT_FALSE(blocks("Photoshop Elements Installer", "Elements") || blocks("Lightroom Installer", "Lightroom"));
  EXPECT_FALSE(blocks("Anything", "")) << "an application without a name of its own";
  workspace_.running = {"Lightroom Installer", "Lightroom"};
  RunningHostViewController page(platform_, model_);
  EXPECT_TRUE(page.isHostRunning("Lightroom")) << "behind one that does not count";
}

TEST_F(RunningHostTest, PassesItselfWhenNothingRuns) {
  RunningHostViewController page(platform_, model_);
  workspace_.running = {"Finder"};
  main_.onNextView = [&] {
    EXPECT_TRUE(page.canProceed(1) && page.enableForward());
    EXPECT_FALSE(view_->isHidden || workspace_.isObserved());
    page.didProceed(1);  // as the wizard does, within the entry
  };
  for (const std::int32_t direction : {1, -1}) {
    enter(page, direction);
    // The host's name, the state, and on.
    EXPECT_EQ(main_.announced, "()+enableForward ()-enableForward next ");
    EXPECT_TRUE(view_->isHidden && !workspace_.isObserved());
    EXPECT_EQ(view_.use_count(), 1);
  }
  main_.selected.clear();
  enter(page);
  EXPECT_EQ(main_.announced, "+enableForward ()-enableForward next ") << "no host, no name";
}

TEST_F(RunningHostTest, WaitsForTheHostToQuit) {
  RunningHostViewController page(platform_, model_);
  main_.selected = {folder_, lightroom_};
  workspace_.running = {"Adobe Lightroom", "Finder"};
  enter(page);
  EXPECT_EQ(main_.announced, "()()+enableForward ()-enableForward ");
  EXPECT_EQ(text(), "Quit: Quit Lightroom, please, Lightroom.");
  EXPECT_EQ(model_->informativeText().runs().size(), 3U) << "the name is as bold as its place";
  EXPECT_TRUE(!page.enableForward() && !page.canProceed(1));
  EXPECT_TRUE(page.enableBackward() && page.canProceed(-1));

  main_.announced.clear();
  workspace_.end("Finder");
  EXPECT_EQ(main_.announced, "()()") << "it only looks again";
  EXPECT_FALSE(page.enableForward());
  main_.announced.clear();
  workspace_.end("Adobe Lightroom");
  EXPECT_EQ(main_.announced, "()()+enableForward +mainLabelText ()-enableForward -mainLabelText ");
  EXPECT_EQ(text(), "Thanks: Install Dunmore 3.");
  EXPECT_TRUE(page.enableForward() && page.canProceed(1) && !view_->isHidden) << "it does not move on by itself";
  EXPECT_TRUE(workspace_.isObserved()) << "until it is left";
  page.didProceed(1);
  EXPECT_TRUE(view_->isHidden && !workspace_.isObserved());
  EXPECT_EQ(log_.lines, (Paths{"terminated Finder", "terminated Adobe Lightroom"}));
}

TEST_F(RunningHostTest, MissesNoApplicationThatEndsDuringTheCheck) {
  RunningHostViewController page(platform_, model_);
  workspace_.running = {"Lightroom"};
  // What runs is looked up before the first name is set.
  bool isObservedDuringCheck = true;
  const auto observation = model_->observe(
      [&](std::string_view, auto) { isObservedDuringCheck = isObservedDuringCheck && workspace_.isObserved(); });
  enter(page);
  EXPECT_TRUE(isObservedDuringCheck);
}

TEST_F(RunningHostTest, WaitsForTheProductsOwnApplications) {
  addPayload("Studio.app", "Studio");
  addPayload("Tools/Deep.app", "Deep");
  addPayload("Studio.app/Contents/Helper.app", "Helper");
  addPayload(".Hidden.app", "Hidden");
  addPayload("Plain folder", "Plain");
  makeBundle(machine_.payload("HD/Applications/Nameless.app"), {});
  RunningHostViewController page(platform_, model_);
  for (const char* const unknown : {"Helper", "Hidden", "Plain", "Studio Installer"}) {
    workspace_.running = {unknown};
    enter(page);
    EXPECT_TRUE(page.enableForward()) << unknown;
  }
  for (const char* const known : {"Deep", "Corvane Studio"}) {
    workspace_.running = {known};
    enter(page);
    EXPECT_FALSE(page.enableForward()) << known;
    page.didProceed(-1);
  }
  EXPECT_EQ(text(), "Quit: Quit Studio, please, Studio.");
}

}  // namespace
