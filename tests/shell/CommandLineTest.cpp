#include <gtest/gtest.h>

#include <vector>

#include "shell/CommandLine.h"

namespace {

CommandLine parsed(const std::vector<std::string_view>& arguments) { return parseCommandLine(arguments); }

TEST(CommandLine, IsQuietOnlyWhenThatComesFirst) {
  EXPECT_TRUE(parsed({"-quiet"}).isQuiet);
  EXPECT_EQ(parsed({"-quiet"}).target, "/");
  EXPECT_TRUE(parsed({"-quiet", "-target", "/Volumes/Mac"}).isQuiet);
  EXPECT_EQ(parsed({"-quiet", "-target", "/Volumes/Mac"}).target, "/Volumes/Mac");
  for (const auto& arguments : std::vector<std::vector<std::string_view>>{
           {}, {"-Quiet"}, {"--quiet"}, {"-target", "/x", "-quiet"}, {"-psn_0_1", "-quiet"}}) {
    EXPECT_FALSE(parsed(arguments).isQuiet);
    EXPECT_EQ(parsed(arguments).problem, "") << "the window starts with any arguments";
  }
  EXPECT_EQ(parsed({"-target", "/x", "-quiet"}).target, "/x");
}

TEST(CommandLine, RefusesAQuietInstallThatItDoesNotUnderstand) {
  EXPECT_NE(parsed({"-quiet", "-target"}).problem, "");
  EXPECT_NE(parsed({"-target"}).problem, "");
  EXPECT_NE(parsed({"-quiet", "-targte", "/Volumes/Mac"}).problem, "");
  EXPECT_NE(parsed({"-quiet", "/Volumes/Mac"}).problem, "");
}

}  // namespace
