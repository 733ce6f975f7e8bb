// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Bundle.h"

/// A bundle's version as one whole number of any length, for comparison only.
class BundleVersion {
 public:
  /// From "3.1.2": every component is written with at least four digits, and the digits together are the number, here
  /// 300010002. Versions with different numbers of components therefore compare by their length first ("3.0.9" is
  /// greater than "3.1"); installed products rely on it. A component that is no number counts as 0.
  static BundleVersion parse(std::string_view version);

  /// The number without leading zeros.
  [[nodiscard]] const std::string& digits() const { return digits_; }

  bool operator==(const BundleVersion&) const = default;
  std::strong_ordering operator<=>(const BundleVersion& other) const;

 private:
  std::string digits_;
};

/// The version in the bundle's info dictionary; nothing when it has none.
[[nodiscard]] std::optional<BundleVersion> versionFromBundle(const Bundle& bundle);
