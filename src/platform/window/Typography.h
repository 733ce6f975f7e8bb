// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

/// The text as it is shown in several lines: a short number keeps to the word before it ("Dunmore 3"), by a space that
/// breaks no line.
[[nodiscard]] std::string withNumbersKeptToWords(std::string_view text);
