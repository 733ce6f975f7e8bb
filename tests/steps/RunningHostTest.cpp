// SPDX-License-Identifier: Apache-2.0

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
  void addPayload(const std::string& path, const std::string& name) {
    makeBundle(machine_.payload("HD/Applications/" + path), {{"CFBundleName", name}});
  }
  /// Enters the page while these applications run; whether it lets the person go on.
  bool passes(const Paths& running) {
    workspace_.running = running;
    page_.didEnterWithModel(nullptr, view_, &main_, 1);
    return page_.enableForward();
  }

  RecordingWorkspace& workspace_ = machine_.workspace;
  RecordingMainController main_;
  std::shared_ptr<RunningHostViewModel> model_ = std::make_shared<RunningHostViewModel>(platform_);
  std::shared_ptr<RecordingView> view_ = std::make_shared<RecordingView>();
  RunningHostViewController page_{platform_, model_};
};

TEST_F(RunningHostTest, RecognisesHostsByPartsOfNames) {
  const auto photoshop = [&](const char* name) { return PhotoshopHostModel::initWithHostName(platform_, name); };
  const std::vector<std::pair<std::shared_ptr<HostModel>, std::string>> wanted = {
      {UnknownHostModel::initWithPlugInPath(platform_, "/Mine"), "Photoshop"},
      {photoshop("Adobe Photoshop CC 2019"), "Photoshop"},
      {photoshop("Adobe Photoshop Elements 2019"), "Elements"},
      {LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"), "Lightroom"},
      {ApertureHostModel::initWithHostName(platform_, "Aperture"), "Aperture"},
      {FireworksHostModel::initWithHostName(platform_, "Adobe Fireworks CS6"), "Aperture"}};
  for (const auto& [host, text] : wanted)
    EXPECT_EQ(RunningHostViewController::hostAppSearchString(*host), text) << host->hostName();

  const auto blocks = [this](const Paths& running, const char* text) {
    workspace_.running = running;
    return page_.isHostRunning(text);
  };
  EXPECT_TRUE(blocks({"Finder", "Photoshop"}, "Photoshop"));
  EXPECT_TRUE(blocks({"Photoshop CS6"}, "Photoshop"));
  EXPECT_TRUE(blocks({"Photoshop Installer"}, "Photoshop")) << "only the start of the name counts";
  EXPECT_FALSE(blocks({"Adobe Photoshop 2020", "photoshop"}, "Photoshop"));
  EXPECT_TRUE(blocks({"Adobe Photoshop Elements 11"}, "Elements"));
  EXPECT_FALSE(blocks({"Photoshop Elements Installer"}, "Elements"));
  EXPECT_TRUE(blocks({"Lightroom Installer", "Lightroom"}, "Lightroom")) << "behind one that does not count";
  EXPECT_FALSE(blocks({"Anything"}, "")) << "an application without a name of its own";
}

TEST_F(RunningHostTest, WatchesFromBeforeTheCheckUntilItIsLeft) {
  main_.selected = {LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom")};
  // What runs is looked up before the first name is set.
  bool isObservedDuringCheck = true;
  const auto observation = model_->observe(
      [&](std::string_view, auto) { isObservedDuringCheck = isObservedDuringCheck && workspace_.isObserved(); });
  EXPECT_FALSE(passes({"Adobe Lightroom", "Finder"}));
  EXPECT_TRUE(isObservedDuringCheck) << "or one that ends meanwhile is waited for in vain";
  workspace_.end("Finder");
  EXPECT_FALSE(page_.enableForward());
  EXPECT_FALSE(page_.canProceed(1));
  EXPECT_TRUE(page_.canProceed(-1));
  workspace_.end("Adobe Lightroom");
  EXPECT_TRUE(page_.enableForward());
  EXPECT_TRUE(page_.canProceed(1));
  EXPECT_FALSE(view_->isHidden);
  EXPECT_EQ(main_.announced.find("next"), std::string::npos) << "the person goes on";
  page_.didProceed(1);
  EXPECT_TRUE(view_->isHidden);
  EXPECT_FALSE(workspace_.isObserved());
}

TEST_F(RunningHostTest, WaitsAgainForAHostThatIsStartedAgain) {
  main_.selected = {LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom")};
  const auto heading = [this] { return model_->mainLabelText(); };
  passes({"Adobe Lightroom"});
  const auto whileRunning = heading();
  workspace_.end("Adobe Lightroom");
  const auto thanks = heading();
  ASSERT_NE(thanks, whileRunning);

  main_.announced.clear();
  workspace_.begin("Adobe Lightroom");
  EXPECT_FALSE(page_.enableForward());
  EXPECT_EQ(heading(), whileRunning);
  EXPECT_EQ(main_.announced, "+enableForward +mainLabelText -enableForward -mainLabelText ");

  workspace_.end("Adobe Lightroom");
  workspace_.running = {"Adobe Lightroom", "Finder"};  // started, and not told of yet
  EXPECT_TRUE(page_.enableForward());
  EXPECT_FALSE(page_.canProceed(1));
  EXPECT_EQ(heading(), whileRunning) << "which tells why";
  EXPECT_FALSE(page_.enableForward());
  workspace_.end("Finder");
  EXPECT_EQ(heading(), whileRunning);
}

TEST_F(RunningHostTest, ShowsOneNameForEachCheck) {
  main_.selected = {PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6"),
                    LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom")};
  int changes = 0;
  const auto observation = model_->observe(
      [&](std::string_view, auto moment) { changes += moment == KeyValueObserving::Moment::didChange ? 1 : 0; });
  passes({"Adobe Lightroom"});
  changes = 0;
  workspace_.end("Finder");
  EXPECT_EQ(changes, 1) << "or the window flickers";
}

TEST_F(RunningHostTest, WaitsForTheProductsOwnApplications) {
  addPayload("Studio.app", "Studio");
  addPayload("Tools/Deep.app", "Deep");
  addPayload("Studio.app/Contents/Helper.app", "Helper");
  addPayload(".Hidden.app", "Hidden");
  addPayload("Plain folder", "Plain");
  makeBundle(machine_.payload("HD/Applications/Nameless.app"), {});
  for (const char* const unknown : {"Helper", "Hidden", "Plain", "Studio Installer"}) EXPECT_TRUE(passes({unknown}));
  for (const char* const known : {"Deep", "Corvane Studio"}) EXPECT_FALSE(passes({known})) << known;
}

}  // namespace
