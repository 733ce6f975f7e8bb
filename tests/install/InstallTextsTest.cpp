// SPDX-License-Identifier: Apache-2.0

#include "hosts/PhotoshopHostModel.h"
#include "install/InstallPace.h"
#include "install/InstallPlanner.h"
#include "install/InstallTexts.h"
#include "support/TestMachine.h"

namespace {

TEST(InstallPaceTest, TellsTheRestFromTheLatestSpeed) {
  using namespace std::chrono_literals;
  const InstallPace::Time begin{};
  InstallPace pace;
  pace.begin(begin);
  double done = 0;
  InstallPace::Time now = begin;
  const auto work = [&](std::chrono::milliseconds time, double perSecond) {
    for (auto passed = 0ms; passed < time; passed += 250ms) {
      now += 250ms;
      done += perSecond / 4;
      pace.note(done, now);
    }
  };
  work(1500ms, 0.04);
  EXPECT_FALSE(pace.remaining()) << "too early to tell";
  work(8500ms, 0.04);
  EXPECT_NEAR(static_cast<double>(pace.remaining()->count()), 15, 1);
  work(20s, 0.02);
  EXPECT_NEAR(static_cast<double>(pace.remaining()->count()), 10, 1.5) << "half as fast since";
  work(40s, 0);
  EXPECT_GT(pace.remaining().value_or(100h), 60s) << "it has all but stopped";
}

class InstallTextsTest : public MachineTest {
 protected:
  InstallTextsTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/Localizable.strings"), R"(
        result_installed = "in %@"; result_missing = "not"; result_none = "none";
        quiet_items = "%@ items"; failure_items = "failed:"; failure_next = "again"; failure_unchanged = "unchanged";
        failure_kept = "kept"; reason_space = "full"; reason_folder = "in the way"; reason_other = "error %@"; quiet_denied = "denied";
        summary_space = "%1$@ of %2$@"; summary_no_hosts = "no host"; summary_replaced = "%1$@ to %2$@";
        size_megabytes = "%@ MB"; progress_amount = "%1$@ of %2$@";
        progress_minutes = "%@ min"; progress_seconds = "soon"; progress_flushing = "flushing";)");
    machine_.addPhotoshop("Adobe Photoshop CS6");
    hosts_ = {PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6")};
  }

  [[nodiscard]] std::string told(bool isSuccessful, const HostList& hosts) const {
    return outcomeText(platform_, {.report = report_, .hosts = hosts, .isSuccessful = isSuccessful}, RichText("Well."))
        .string();
  }

  const std::string folder_ = "/Applications/Adobe Photoshop CS6/Plug-Ins";
  InstallReport report_;
  HostList hosts_;
};

TEST_F(InstallTextsTest, TellWhatWasInstalledWhereAndWhatFailed) {
  report_.installedPaths = {"/Library/a", "/elsewhere/b"};
  report_.hostsOfPaths = {0, 1};
  EXPECT_EQ(told(true, hosts_), "Well.\nAdobe Photoshop CS6\nin /elsewhere");
  report_.installedPaths = {"/Library/a", "/elsewhere/b", folder_ + "/Corvane/b"};
  report_.hostsOfPaths = {0, 1, 1};
  EXPECT_EQ(told(true, hosts_), "Well.\nAdobe Photoshop CS6\nin " + folder_);
  report_.hostsOfPaths = {0, 0, 0};
  EXPECT_EQ(told(true, hosts_), "Well.\nAdobe Photoshop CS6\nnot");
  EXPECT_EQ(told(true, {}), "none\n3 items") << "no success page where no host was served";

  report_.failures = {{folder_ + "/b", Error::posix(std::errc::no_space_on_device, "b")},
                      {"/c", Error::posix(std::errc::bad_message, "c")}};
  EXPECT_EQ(told(false, hosts_), "Well.\n3 items\nkept\nagain\nfailed:\n" + folder_ + "/b: full\n/c: error " +
                                     std::to_string(static_cast<int>(std::errc::bad_message)));
  report_ = {};
  EXPECT_EQ(outcomeText(platform_, {.report = report_, .hosts = hosts_, .isDenied = true}, RichText("Well.")).string(),
            "Well.\ndenied\nunchanged\nagain");
}

TEST_F(InstallTextsTest, TellBeforehandWhatIsReplacedAndHowLargeItIs) {
  const auto makePlugIn = [](const fs::path& place, const std::string& version) {
    makeBundle(place, {{"CFBundleVersion", version}});
  };
  makePlugIn(machine_.payload("PHOTOSHOP_PLUGINS/Filter.plugin"), "3.0");
  writeFile(machine_.payload("PHOTOSHOP_PLUGINS/Filter.plugin/Contents/large"), std::string(1'500'000, 'x'));
  const auto version = [&] {
    return versionText(platform_, InstallPlanner(platform_, {.hasPage = true, .isDetailed = true}).plan(hosts_), 0);
  };
  EXPECT_EQ(version(), "");
  makePlugIn(on(folder_ + "/Filter.plugin"), "2.4");
  EXPECT_EQ(version(), "2.4 to 3.0");
  writeFile(on("/elsewhere"), "");
  fs::remove_all(on(folder_));
  fs::create_symlink(on("/elsewhere"), on(folder_));
  EXPECT_EQ(version(), "in the way");
  fs::remove(on(folder_));

  const std::string text = planText(platform_, InstallPlanner(platform_, {.hasPage = true}).plan(hosts_));
  EXPECT_TRUE(text.starts_with("2 MB of ")) << text;
  EXPECT_EQ(planText(platform_, InstallPlanner(platform_, {.hasPage = true}).plan({})), "no host");

  InstallProgress progress{.planned = {.bytes = 9'500'000}, .copied = {.bytes = 1'000'000}};
  EXPECT_EQ(progressText(platform_, progress, std::nullopt), "1 MB of 10 MB");
  EXPECT_EQ(progressText(platform_, progress, std::chrono::seconds(70)), "1 MB of 10 MB – 2 min");
  progress.phase = InstallProgress::Phase::flushing;
  EXPECT_EQ(progressText(platform_, progress, std::chrono::seconds(1)), "flushing");
}

TEST(InstallProgressTest, GoesOnInEachPhase) {
  using Phase = InstallProgress::Phase;
  const InstallProgress::Time start;
  const auto after = [&](int seconds) { return start + std::chrono::seconds(seconds); };
  std::vector<double> course;
  InstallProgress progress{.planned = {.bytes = 10'000'000, .files = 400}, .begun = start};
  for (std::uint64_t part = 0; part < 10; ++part) {
    progress.copied = {.bytes = 1'000'000 * part, .files = 40 * part};
    course.push_back(progress.fraction(after(0)));
  }
  progress.enter(Phase::flushing, after(2));
  for (const int time : {2, 3, 4, 6, 10}) course.push_back(progress.fraction(after(time)));
  progress.enter(Phase::cleaningUp, after(20));
  for (const int time : {20, 21, 22, 25, 30}) course.push_back(progress.fraction(after(time)));
  progress.enter(Phase::done, after(40));
  course.push_back(progress.fraction(after(40)));
  for (std::size_t i = 1; i < course.size(); ++i) EXPECT_GT(course[i], course[i - 1]) << i;
  EXPECT_EQ(course.front(), 0);
  EXPECT_EQ(course.back(), 1);
}

}  // namespace
