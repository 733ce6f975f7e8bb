// SPDX-License-Identifier: Apache-2.0

#include "wizard/WizardTest.h"

namespace {

/// The program with a configuration that asks for the page about Aperture, on a volume with Aperture.
class WizardWithApertureTest : public WizardTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    WizardTest::SetUp();
    if (IsSkipped()) return;
    useOwnBundle();
    configure(bundle_, "aperture_page", "yes");
    makeBundle(volume_ / "Applications/Aperture.app", {{"CFBundleIconFile", "Icon"}});
    fs::create_directories(volume_ / "Applications/Aperture.app/Contents/Resources");
    fs::copy(bundle_ / "Contents/Resources/Installer.icns",
             volume_ / "Applications/Aperture.app/Contents/Resources/Icon.icns");
  }
};

TEST_P(WizardWithApertureTest, ShowsThePageAndStartsTheApplication) {
  speak(GetParam());
  run([] {
    agreeToLicence();
    waitForPage("foundHostsController");
    press("forwardButton");
    waitForPage("apertureRunView");
    look(window(), "aperture");
    EXPECT_TRUE(isEnabled("backwardButton"));
    EXPECT_NE(textIn("apertureTextView").find("Dunmore 3"), std::string::npos);
    EXPECT_FALSE(shownWidget<QLabel>("aperturePicture")->pixmap().isNull());
    const auto rows = window().findChildren<QLabel*>("label");
    EXPECT_EQ(rows.size(), 6);
    for (QLabel* const label : rows) {
      const QWidget* const row = label->parentWidget();
      EXPECT_TRUE(row->parentWidget()->rect().contains(row->geometry())) << fromQt(label->text()) << " is cut off";
    }
    press("forwardButton");
    waitForPage("registerView");
    press("forwardButton");
  });
  expectWholeInstall();
}

INSTANTIATE_TEST_SUITE_P(Languages, WizardWithApertureTest, testing::Values("ar", "de", "en"));

}  // namespace
