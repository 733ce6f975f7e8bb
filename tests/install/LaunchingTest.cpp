// SPDX-License-Identifier: Apache-2.0

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
  EXPECT_EQ(both.error->domain + std::to_string(both.error->code), "com.apple.NSTask.OneLineTasksWithOutput-2");
  EXPECT_EQ(both.error->userInfo.at("standardError"), "warning\n");
  EXPECT_FALSE(shell("exit 1").error) << "a status is no error";
  EXPECT_EQ(shell("head -c 1000000 /dev/zero | tr '\\0' x").output->size(), 1'000'000U) << "more than a pipe holds";
  EXPECT_EQ(stringByLaunchingPath(platform_, "/bin/echo", {"$HOME", "*", "a b", ""}).output, "$HOME * a b \n");

  const LaunchResult missing = stringByLaunchingPath(platform_, "/no/such/tool", {});
  EXPECT_FALSE(missing.output);
  EXPECT_EQ(missing.error->code, -1);
  EXPECT_EQ(missing.error->description(), "/no/such/tool: No such file or directory");
  EXPECT_EQ(shell("printf '\\377'").error->code, -1) << "output that is no text";
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
  Result<std::unique_ptr<Transaction>> beginTransaction() override { return Error{}; }
  void waitForAnyChild() override { ++waits; }
};

TEST(PrivilegedLaunch, DropsTheFirstBlockOfTheOutputAndHalfOfTheStatus) {
  Scripted rights;
  const std::string first(64, 'a');
  const std::string second(64, 'b');
  // A block that is not UTF-8 by itself adds nothing.
  const std::pair<std::string, std::string> outputs[] = {
      {"", ""}, {first, ""}, {first + "b", "b"}, {first + second + "\xFF" + std::string(63, 'c') + "ü", second + "ü"}};
  for (const auto& [output, kept] : outputs) {
    rights.output = output;
    EXPECT_EQ(stringByLaunchingPath("/bin/tool", {}, rights, /*wait=*/true).output, kept);
  }

  rights.status = -60031;
  EXPECT_EQ(authorizedLaunchPath("/bin/tool", {}, rights, /*wait=*/false)->code, 5505);
  EXPECT_FALSE(stringByLaunchingPath("/bin/tool", {}, rights, /*wait=*/true).output);
  EXPECT_EQ(rights.waits, 5) << "also after a launch that failed, and only when asked";
  rights.status = 0x10000;
  EXPECT_FALSE(authorizedLaunchPath("/bin/tool", {}, rights, /*wait=*/true)) << "the low half is zero";
  EXPECT_EQ(stringByLaunchingPath("/bin/tool", {}, rights, /*wait=*/true).output, "") << "and there is no pipe";
}

}  // namespace
