// SPDX-License-Identifier: Apache-2.0

#include "wizard/WizardTest.h"

namespace {

/// The program with a configuration that asks for the page about Aperture, on a volume with Aperture.
class WizardWithApertureTest : public WizardTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    WizardTest::SetUp();
    if (IsSkipped()) return;
    bundle_ = folder_.path() / "Installer.app";
    fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    const fs::path table = bundle_ / "Contents/Resources/en.lproj/installer.strings";
    writeFile(table, replacingOccurrences(readFile(table), R"("aperture_page" = "no")", R"("aperture_page" = "yes")"));
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
    const std::string steps = ::steps();
    EXPECT_EQ(std::ranges::count(steps, '*'), 1) << steps;
    const auto rows = window().findChildren<QLabel*>("label");
    EXPECT_EQ(rows.size(), 6);
    for (QLabel* const label : rows) {
      const QWidget* const row = label->parentWidget();
      EXPECT_TRUE(row->parentWidget()->rect().contains(row->geometry())) << fromQt(label->text()) << " is cut off";
    }
    const std::string forward = fromQt(shownWidget<QAbstractButton>("forwardButton")->text());
    press("forwardButton");
    waitForPage("registerView");
    look(window(), "after-aperture");
    EXPECT_NE(fromQt(shownWidget<QAbstractButton>("forwardButton")->text()), forward) << "this one finishes";
    press("forwardButton");
  });
  expectWholeInstall();
}

INSTANTIATE_TEST_SUITE_P(Languages, WizardWithApertureTest, testing::Values("ar", "de", "en"));

}  // namespace
