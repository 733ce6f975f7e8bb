// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The path of a program of this system; nothing when it is not installed.
[[nodiscard]] std::optional<std::string> findExecutable(std::string_view name);
