// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "platform/Platform.h"

/// The tool's texts in the user's language; English where no platform is to be had, and where a maker's tables do not
/// know a text.
class ToolTexts {
 public:
  /// `platform` may be null.
  explicit ToolTexts(const Platform* platform) : platform_(platform) {}

  [[nodiscard]] std::string operator()(std::string_view key, std::string_view english) const;

  [[nodiscard]] std::string product() const;
  /// The version of the installer's bundle.
  [[nodiscard]] std::string version() const;

  /// "1,234,567" becomes "1.2 MB".
  [[nodiscard]] static std::string size(std::uint64_t bytes);

 private:
  const Platform* platform_;
};
