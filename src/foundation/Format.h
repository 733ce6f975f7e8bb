#pragma once

#include <span>
#include <string>
#include <string_view>

/// A localized format with its placeholders filled in: "%@" and "%d" take the next argument, "%1$@" the one with that
/// number, "%%" is a per-cent sign. Formats come from translators, so no format is wrong enough to fail: a placeholder
/// without an argument becomes nothing, an argument without a placeholder is left out, and everything that is not one
/// of these placeholders stays as it is written.
[[nodiscard]] std::string formatted(std::string_view format, std::span<const std::string_view> arguments);

template <class... Texts>
[[nodiscard]] std::string formatted(std::string_view format, const Texts&... arguments) {
  const std::string_view texts[] = {std::string_view(arguments)...};
  return formatted(format, std::span<const std::string_view>(texts));
}
