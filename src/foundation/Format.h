// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

/// A localized format with its placeholders filled in: "%@" and "%d" take the next argument, "%1$@" the one with that
/// number, "%%" is a per-cent sign. Never fails, because formats come from translators: a placeholder without an
/// argument is removed, an argument without a placeholder is ignored, and anything else is copied unchanged.
[[nodiscard]] std::string formatted(std::string_view format, std::span<const std::string_view> arguments);

template <class... Texts>
[[nodiscard]] std::string formatted(std::string_view format, const Texts&... arguments) {
  const std::string_view texts[] = {std::string_view(arguments)...};
  return formatted(format, std::span<const std::string_view>(texts));
}

/// The arguments that a format shows, by their numbers from 1.
[[nodiscard]] std::set<std::size_t> argumentsOf(std::string_view format);
