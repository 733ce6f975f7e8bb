// SPDX-License-Identifier: Apache-2.0

#include "install/BundleVersion.h"

#include <cstdint>

#include "foundation/Text.h"

namespace {

std::string_view withoutLeadingZeros(std::string_view digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return first == std::string_view::npos ? std::string_view("0") : digits.substr(first);
}

}  // namespace

BundleVersion BundleVersion::parse(std::string_view version) {
  std::string number;
  for (std::string_view component : split(version, '.')) {
    const bool isNumber = !component.empty() && component.find_first_not_of("0123456789") == std::string_view::npos;
    const std::string_view digits = isNumber ? withoutLeadingZeros(component) : "0";
    if (digits.size() < 4) number.append(4 - digits.size(), '0');
    number.append(digits);
  }
  BundleVersion parsed;
  parsed.digits_ = withoutLeadingZeros(number);
  return parsed;
}

std::strong_ordering BundleVersion::operator<=>(const BundleVersion& other) const {
  const auto byLength = digits_.size() <=> other.digits_.size();
  return std::is_neq(byLength) ? byLength : digits_ <=> other.digits_;
}

std::optional<BundleVersion> versionFromBundle(const Bundle& bundle) {
  const Value version = bundle.infoValue("CFBundleVersion");
  if (const auto* text = version.as<std::string>()) return BundleVersion::parse(*text);
  if (const auto* number = version.as<std::int64_t>()) return BundleVersion::parse(std::to_string(*number));
  return std::nullopt;
}
