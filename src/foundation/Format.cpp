// SPDX-License-Identifier: Apache-2.0

#include "foundation/Format.h"

#include <algorithm>
#include <optional>

namespace {

struct Placeholder {
  std::size_t length = 0;                              ///< in the format, the per-cent sign included
  std::optional<std::size_t> position = std::nullopt;  ///< from 1; empty: the next argument
};

/// The placeholder at the start of `text`, which starts with a per-cent sign.
std::optional<Placeholder> placeholderAt(std::string_view text) {
  const auto isConversion = [&](std::size_t i) { return i < text.size() && (text[i] == '@' || text[i] == 'd'); };
  if (isConversion(1)) return Placeholder{2};
  std::size_t i = 1;
  std::size_t position = 0;
  constexpr std::size_t maxDigits = 3;
  for (; i < text.size() && i <= maxDigits && text[i] >= '0' && text[i] <= '9'; ++i) {
    position = position * 10 + static_cast<std::size_t>(text[i] - '0');
  }
  if (i == 1 || position == 0 || i >= text.size() || text[i] != '$' || !isConversion(i + 1)) return std::nullopt;
  return Placeholder{i + 2, position};
}

}  // namespace

std::string formatted(std::string_view format, std::span<const std::string_view> arguments) {
  std::string result;
  std::size_t next = 0;
  while (!format.empty()) {
    const std::size_t sign = format.find('%');
    result.append(format.substr(0, sign));
    if (sign == std::string_view::npos) break;
    format.remove_prefix(sign);
    if (format.starts_with("%%")) {
      result += '%';
      format.remove_prefix(2);
    } else if (const auto placeholder = placeholderAt(format)) {
      const std::size_t index = placeholder->position ? *placeholder->position - 1 : next++;
      if (index < arguments.size()) result.append(arguments[index]);
      format.remove_prefix(placeholder->length);
    } else {
      result += '%';
      format.remove_prefix(1);
    }
  }
  return result;
}

std::set<std::size_t> argumentsOf(std::string_view format) {
  std::set<std::size_t> shown;
  std::size_t next = 0;
  for (std::size_t sign = 0; (sign = format.find('%')) != std::string_view::npos;) {
    format.remove_prefix(sign);
    const auto placeholder = placeholderAt(format);
    if (placeholder) shown.insert(placeholder->position ? *placeholder->position : ++next);
    format.remove_prefix(placeholder ? placeholder->length
                                     : std::min<std::size_t>(format.size(), format.starts_with("%%") ? 2 : 1));
  }
  return shown;
}
