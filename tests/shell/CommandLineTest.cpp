// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <vector>

#include "shell/CommandLine.h"

namespace {

TEST(CommandLine, IsQuietOnlyWithTheOptionFirst) {
  using Arguments = std::vector<std::string_view>;
  const auto summary = [](const Arguments& arguments) {
    const CommandLine line = parseCommandLine(arguments);
    return line.problem.empty() ? (line.isQuiet ? "quiet " : "window ") + std::string(line.target) : "refused";
  };
  EXPECT_EQ(summary({"-quiet"}), "quiet /");
  EXPECT_EQ(summary({"-quiet", "-target", "/Volumes/Mac"}), "quiet /Volumes/Mac");
  EXPECT_EQ(summary({"-target", "/x", "-quiet"}), "window /x");
  for (const Arguments& any : {Arguments{}, {"-Quiet"}, {"-psn_0_1", "-quiet"}}) EXPECT_EQ(summary(any), "window /");
  for (const Arguments& bad :
       {Arguments{"-target"}, {"-quiet", "-target"}, {"-quiet", "-targte", "/x"}, {"-quiet", "/x"}}) {
    EXPECT_EQ(summary(bad), "refused") << bad.back();
  }
}

}  // namespace
