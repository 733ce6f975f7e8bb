#include "install/launching/OneLineTasksWithOutput.h"
#include "support/TestMachine.h"

namespace {

using namespace OneLineTasksWithOutput;
using UnprivilegedLaunchTest = MachineTest;

TEST_F(UnprivilegedLaunchTest, CollectsBothOutputs) {
  const auto shell = [&](const std::string& script) {
    return stringByLaunchingPath(platform_, "/bin/sh", {"-c", script});
  };
  const LaunchResult both = shell("echo ok; echo warning >&2");
  EXPECT_EQ(both.output, "ok\n") << "as written, not trimmed";
  ASSERT_TRUE(both.error);
  EXPECT_EQ(both.error->domain, "com.apple.NSTask.OneLineTasksWithOutput");
  EXPECT_EQ(both.error->code, -2);
  EXPECT_EQ(both.error->userInfo.at("standardError"), "warning\n");

  const LaunchResult quiet = shell("exit 1");
  EXPECT_EQ(quiet.output, "");
  EXPECT_FALSE(quiet.error) << "a status is no error";
  EXPECT_EQ(shell("head -c 1000000 /dev/zero | tr '\\0' x").output->size(), 1'000'000U) << "more than a pipe holds";
  EXPECT_EQ(stringByLaunchingPath(platform_, "/bin/echo", {"$HOME", "*", "a b", ""}).output, "$HOME * a b \n");
}

TEST_F(UnprivilegedLaunchTest, GivesTheReasonWhenItRaises) {
  const LaunchResult missing = stringByLaunchingPath(platform_, "/no/such/tool", {});
  EXPECT_FALSE(missing.output);
  EXPECT_EQ(missing.error->code, -1);
  EXPECT_EQ(missing.error->description(), "/no/such/tool: No such file or directory");
  EXPECT_EQ(stringByLaunchingPath(platform_, "/usr/bin/printf", {"\\377"}).error->code, -1) << "output that is no text";
}

/// Rights whose launches end and write as a test wants.
struct Scripted : Authorization {
  LaunchStatus status = launchSucceeded;
  std::string output;
  int waits = 0;

  struct Text : CommunicationsPipe {
    explicit Text(std::string t) : text(std::move(t)) {}
    std::size_t read(char* bytes, std::size_t size) override {
      const std::size_t length = text.copy(bytes, size);
      text.erase(0, length);
      return length;
    }
    std::string text;
  };

  bool obtain(std::uint32_t /*flags*/) override { return true; }
  LaunchStatus executeWithPrivileges(const std::string& /*toolPath*/, const std::vector<std::string>& /*arguments*/,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    if (status == launchSucceeded) pipe = std::make_unique<Text>(output);
    return status;
  }
  void waitForAnyChild() override { ++waits; }
};

TEST(PrivilegedLaunch, DropsTheFirstBlockOfTheOutput) {
  Scripted rights;
  const auto outputOf = [&](std::string text) {
    rights.output = std::move(text);
    return *stringByLaunchingPath("/bin/tool", {}, rights, /*wait=*/true).output;
  };
  EXPECT_EQ(outputOf(""), "");
  EXPECT_EQ(outputOf(std::string(64, 'a')), "");
  EXPECT_EQ(outputOf(std::string(64, 'a') + std::string(36, 'b')), std::string(36, 'b'));
  // A block that is not UTF-8 by itself adds nothing.
  EXPECT_EQ(outputOf(std::string(64, 'a') + std::string(64, 'b') + "\xFF" + std::string(63, 'c') + "ü"),
            std::string(64, 'b') + "ü");
  EXPECT_EQ(rights.waits, 4);
}

TEST(PrivilegedLaunch, ReducesTheStatusTo16Bits) {
  Scripted rights;
  const std::pair<LaunchStatus, std::int32_t> codes[] = {
      {-60006, 5530}, {-60005, 5531}, {-60031, 5505}, {-60000, 5536}, {-1, -1}};
  for (const auto& [status, code] : codes) {
    rights.status = status;
    const auto error = authorizedLaunchPath("/bin/tool", {}, rights, /*wait=*/false);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, code);
    EXPECT_FALSE(stringByLaunchingPath("/bin/tool", {}, rights, /*wait=*/true).output);
  }
  EXPECT_EQ(rights.waits, 5) << "also after a launch that failed, and only when asked";
  rights.status = 0x10000;
  EXPECT_FALSE(authorizedLaunchPath("/bin/tool", {}, rights, /*wait=*/true)) << "the low half is zero";
}

}  // namespace
