#include "steps/LicenseController.h"
#include "steps/LicenseModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class LicenseTest : public MachineTest {
 protected:
  LicenseTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/Localizable.strings"), R"(
        license_instructions = Read; license_blue_dot = Licence; agree_button = Agree; disagree_button = Disagree;
        agree_message = "Do you?"; agree_information = "You must.";)");
  }
  [[nodiscard]] std::optional<std::string> licence() { return LicenseModel(platform_).licenseText(); }

  const fs::path file_ = machine_.inBundle("Resources/en.lproj/license.txt");
  RecordingToolkit& toolkit_ = machine_.toolkit;
  RecordingMainController main_;
  std::shared_ptr<RecordingView> view_ = RecordingView::make();
  LicenseController controller_{platform_};
};

TEST_F(LicenseTest, TellsAMissingAgreementFromAnEmptyOne) {
  EXPECT_EQ(licence(), std::nullopt);
  writeFile(file_, "");
  EXPECT_EQ(licence(), "");
  writeFile(file_, "Gr\xF6\xDF");
  EXPECT_EQ(licence(), std::nullopt) << "not UTF-8";

  const LicenseModel model(platform_);
  EXPECT_EQ(model.mainLabelText(), "Read");
  EXPECT_EQ(model.stepIndicatorLabelText(), "Licence");
  EXPECT_EQ(model.informativeText(), RichText());
}

TEST_F(LicenseTest, AsksUntilThereIsAgreement) {
  EXPECT_TRUE(controller_.canProceed(-1));
  EXPECT_TRUE(toolkit_.alerts.empty());
  toolkit_.answer = AlertAnswer::alternateButton;
  EXPECT_FALSE(controller_.canProceed(1));
  EXPECT_FALSE(controller_.canProceed(1));
  ASSERT_EQ(toolkit_.alerts.size(), 2U);
  const Alert& alert = toolkit_.alerts.back();
  EXPECT_EQ(alert.title + alert.message, "Do you?You must.");
  EXPECT_EQ(alert.defaultButton + "," + alert.alternateButton, "Agree,Disagree");
  EXPECT_EQ(alert.style, Alert::Style::informational);

  toolkit_.answer = AlertAnswer::defaultButton;
  EXPECT_TRUE(controller_.canProceed(1) && controller_.canProceed(1));
  EXPECT_EQ(toolkit_.alerts.size(), 3U) << "once agreed, never asked again";
}

}  // namespace
