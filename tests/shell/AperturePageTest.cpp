// SPDX-License-Identifier: Apache-2.0

#include "shell/SetupControllerTest.h"

namespace {

/// An installer whose maker wants the page about Aperture.
class AperturePageTest : public SetupControllerTest {
 protected:
  AperturePageTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"),
              "company_name = Corvane; product_name = Dunmore; aperture_page = yes;");
    fs::create_directories(on("/Applications/Aperture.app"));
    fs::create_directories(machine_.inBundle("SharedSupport/Standalone/Studio.app"));
    machine_.addPhotoshop("Adobe Photoshop CS6");
  }
  void install() {
    machine_.toolkit.interfaces.clear();
    startAtHosts();
    press("nextView:");
  }
  [[nodiscard]] std::size_t rows() const { return window_->view("stepIndicatorView")->subviews.size(); }
};

TEST_F(AperturePageTest, ComesBetweenTheInstallationAndTheEnd) {
  install();
  EXPECT_EQ(shown(), " [Back|Continue] apertureRunView");
  EXPECT_EQ(rows(), 6U);
  EXPECT_EQ(machine_.workspace.launches, Paths());
  press("nextView:");
  EXPECT_EQ(machine_.workspace.launches, (Paths{"/Applications/Studio.app|-no-ui", "terminate"}));
  EXPECT_EQ(shown(), "The end [-Back|Finish] registerView");
  EXPECT_EQ(wizard_->resultText().string().substr(0, 5), "Enjoy");
  press("nextView:");
  EXPECT_EQ(window_->closed, 1) << "finished";
  EXPECT_EQ(machine_.workspace.launches.size(), 2U);

  install();
  press("previousView:");
  EXPECT_EQ(wizard_->mainLabelText(), "Choose") << "back to another choice";
  EXPECT_EQ(machine_.workspace.launches.size(), 4U) << "the same on the way back";
}

TEST_F(AperturePageTest, StaysAwayWhenThereIsNothingToSetUp) {
  files_.fail(Call::createFile, std::errc::io_error);
  machine_.authorizations.canBeObtained = false;
  install();
  EXPECT_EQ(shown(), "The end [-Back|Finish] registerView") << "nothing was installed";
  EXPECT_TRUE(wizard_->canInstallAgain());
  EXPECT_EQ(machine_.workspace.launches, Paths());

  machine_.authorizations.canBeObtained = true;
  fs::remove(machine_.inBundle("SharedSupport/Standalone/Studio.app"));
  install();
  EXPECT_EQ(shown(), "The end [-Back|Finish] registerView") << "no application to start";
  EXPECT_EQ(rows(), 5U);
  EXPECT_EQ(log_.count("There is no page about Aperture: "), 1);

  fs::create_directories(machine_.inBundle("SharedSupport/Standalone/Studio.app"));
  fs::remove(on("/Applications/Aperture.app"));
  install();
  EXPECT_EQ(rows(), 5U) << "no Aperture";
}

}  // namespace
