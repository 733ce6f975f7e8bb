#include "steps/RegisterController.h"
#include "steps/RegisterModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class RegisterTest : public MachineTest {
 protected:
  RegisterTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/Localizable.strings"),
              "register_title = Ready; register_blue_dot = Finish; install_failed = \"%@ is sorry\";");
    writeFile(page_, "{\\rtf1 {\\b Well} done}");
  }
  [[nodiscard]] static std::string picture(const InterfaceOwner& model) {
    return dynamic_cast<const RecordingImage&>(*std::get<Picture>(model.shownValue("backgroundImage"))).name;
  }

  const fs::path page_ = machine_.inBundle("Resources/en.lproj/register.rtf");
  RecordingMainController main_;
  std::shared_ptr<RecordingView> view_ = RecordingView::make();
  RegisterController controller_;
};

TEST_F(RegisterTest, ChoosesItsPageAtEachEntry) {
  const auto model = std::make_shared<RegisterModel>(platform_);
  EXPECT_EQ(model->informativeText().string(), "Well done") << "before it is told";
  std::string toldText;
  const auto observation = model->observe([&](std::string_view key, auto moment) {
    const bool isAfter = moment == KeyValueObserving::Moment::didChange;
    main_.announced += (isAfter ? "-model." : "+model.") + std::string(key) + " ";
    if (isAfter) toldText = model->informativeText().string();
  });

  controller_.didEnterWithModel(model, view_, &main_, 1);
  EXPECT_EQ(main_.announced,
            "+informativeText +successfulInstall +model.backgroundImage "
            "-informativeText -successfulInstall -model.backgroundImage ");
  EXPECT_EQ(model->informativeText(), RichText("Corvane is sorry"));
  EXPECT_EQ(toldText, "Corvane is sorry") << "in place when it is announced";
  EXPECT_EQ(picture(*model), "Installer_Error");
  EXPECT_TRUE(controller_.enableForward() && !controller_.enableBackward() && controller_.canProceed(1));
  EXPECT_FALSE(view_->isHidden);
  controller_.didProceed(-3);
  EXPECT_TRUE(view_->isHidden);

  main_.isInstalled = true;
  controller_.didEnterWithModel(model, view_, &main_, 1);
  EXPECT_EQ(model->informativeText().runs().size(), 2U);
  EXPECT_EQ(picture(*model), "checkmark");
  EXPECT_EQ(*model->mainLabelText() + model->stepIndicatorLabelText(), "ReadyFinish");
  EXPECT_THROW(static_cast<void>(model->shownValue("foregroundImage")), UnknownKey);
}

}  // namespace
