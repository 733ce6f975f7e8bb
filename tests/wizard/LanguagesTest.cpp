// SPDX-License-Identifier: Apache-2.0

#include <utility>

#include "wizard/WizardTest.h"

namespace {

class WizardInEveryLanguageTest : public WizardTest, public testing::WithParamInterface<const char*> {
 protected:
  /// Looks at the page that is there now; its heading and buttons are where they were on the page before.
  void lookAtPage(const char* view, const std::string& name) {
    waitForPage(view);
    look(window(), name);
    const QRect place = shownWidget<QLabel>("mainLabel")->geometry();
    const QPoint corner = shownWidget<QWidget>("forwardButton")->geometry().bottomRight();
    if (heading_.isNull()) heading_ = place, corner_ = corner, size_ = window().size();
    EXPECT_EQ(place, heading_) << name;
    EXPECT_EQ(corner, corner_) << name;
    EXPECT_EQ(window().size(), size_) << name;
  }
  /// Text and picture of the last page.
  [[nodiscard]] static std::pair<std::string, QImage> outcome() {
    return {textIn("registerTextView"), shownWidget<QLabel>("registerPicture")->grab().toImage()};
  }

  std::string atHosts_;  ///< the page there
  std::pair<std::string, QImage> success_;

 private:
  QRect heading_;
  QPoint corner_;
  QSize size_;
};

TEST_P(WizardInEveryLanguageTest, LeadsFromTheLicenceToTheEndByMouse) {
  speak(GetParam());
  startHost("Adobe Lightroom");
  run([this] {
    lookAtPage("licenseView", "licence");
    agreeToLicence([] {
      look(*shownWidget<QWidget>("alert"), "agree");
      EXPECT_EQ(fromQt(shownWidget<QWidget>("alert")->windowTitle()), fromQt(window().windowTitle()));
    });
    lookAtPage("foundHostsController", "hosts");
    atHosts_ = page();
    press("forwardButton");
    lookAtPage("rtfView", "running");
    const std::string blocked = page();
    EXPECT_FALSE(isEnabled("forwardButton"));
    EXPECT_NE(textIn("rtfTextView").find("Lightroom"), std::string::npos);
    endHost();
    waitUntil("the end of the host", [] { return isEnabled("forwardButton"); });
    lookAtPage("rtfView", "proceed");
    EXPECT_NE(page().substr(0, page().find('[')), blocked.substr(0, blocked.find('['))) << "it says thanks";
    EXPECT_NE(textIn("rtfTextView").find("Dunmore 3"), std::string::npos);

    press("backwardButton");
    pick("customInstallItem");
    press("configureLumatraExternalEditors");
    press("customInstallButton");
    lookAtPage("customInstallView", "custom");
    chooseLater(ownFolder_, [] { look(*shownWidget<QWidget>("openPanel"), "browse"); });
    press("browseButton");
    whenShown("installProgressBar", [this](QWidget&) {
      lookAtPage("installFilesView", "install");
      EXPECT_NE(page(), atHosts_);
      EXPECT_FALSE(isEnabled("backwardButton")) << "while it begins";
    });
    press("forwardButton");
    lookAtPage("registerView", "success");
    EXPECT_NE(textIn("registerTextView").find("Dunmore 3"), std::string::npos);
    success_ = outcome();
    waitUntil("the icon", [] { return !window().windowIcon().isNull(); });
    press("forwardButton");
  });
  expectWholeInstall();
  EXPECT_TRUE(logTells(ownFolder_ + filter_)) << installed(log_);
  EXPECT_FALSE(logTells("/CC" + filter_)) << installed(log_);
  EXPECT_TRUE(logTells("/ExternalEditors.csv"));

  // A folder that cannot be one makes the next install fail; the folder of before is remembered.
  fs::remove_all(volume_ / "Applications/Adobe Photoshop CS6/Plug-Ins");
  writeFile(volume_ / "Applications/Adobe Photoshop CS6/Plug-Ins", "");
  run([this] {
    agreeToLicence();
    waitForPage("foundHostsController");
    pick("customInstallItem");
    press("customInstallButton");
    waitForPage("customPathField");
    EXPECT_EQ(fromQt(shownWidget<QLineEdit>("customPathField")->text()), ownFolder_);
    press("backwardButton");
    QTimer answer;
    bool hasLooked = false;
    QObject::connect(&answer, &QTimer::timeout, [&] {
      auto* const alert = shownWidget<QWidget>("alert");
      if (alert == nullptr) return;
      if (!std::exchange(hasLooked, true)) look(*alert, "error");
      EXPECT_FALSE(window().close()) << "with files still to come";
      press("defaultButton");
    });
    answer.start(5);
    press("forwardButton");
    lookAtPage("registerView", "failure");
    EXPECT_TRUE(hasLooked);
    EXPECT_NE(outcome().first, success_.first);
    EXPECT_NE(outcome().second, success_.second);
    press("forwardButton");
  });
  expectWholeInstall();
  EXPECT_FALSE(logTells("Photoshop CS6/Plug-Ins"));
}

INSTANTIATE_TEST_SUITE_P(Languages, WizardInEveryLanguageTest,
                         testing::Values("ar", "de", "en", "en-GB", "es", "fr", "it", "ja", "ko", "nl", "pl", "pt-BR",
                                         "ru", "sv", "tr", "zh-Hans", "zh-Hant"),
                         [](const auto& language) {
                           std::string name = language.param;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
