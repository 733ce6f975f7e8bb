// SPDX-License-Identifier: Apache-2.0

#include "tool/ToolTexts.h"

#include <array>

#include "payload/InstallerTexts.h"

std::string ToolTexts::operator()(std::string_view key, std::string_view english) const {
  if (platform_ == nullptr) return std::string(english);
  return platform_->bundles.mainBundle().localizedString(key, english, "Localizable");
}

std::string ToolTexts::product() const { return platform_ == nullptr ? std::string() : shownProductName(*platform_); }

std::string ToolTexts::version() const {
  if (platform_ == nullptr) return {};
  return platform_->bundles.mainBundle().infoValue("CFBundleShortVersionString").text();
}

std::string ToolTexts::size(std::uint64_t bytes) {
  constexpr std::array<std::string_view, 5> units = {"B", "kB", "MB", "GB", "TB"};
  std::uint64_t tenths = bytes;
  std::size_t unit = 0;
  constexpr std::uint64_t thousand = 1000;
  for (std::uint64_t rest = bytes; rest >= thousand && unit + 1 < units.size(); rest /= thousand) {
    tenths = rest / (thousand / 10);
    ++unit;
  }
  const std::string unitText = " " + std::string(units[unit]);
  if (unit == 0) return std::to_string(bytes) + unitText;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + unitText;
}
