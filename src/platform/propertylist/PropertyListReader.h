// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string_view>

#include "foundation/Result.h"
#include "foundation/Value.h"

// The two forms of a property list, for readPropertyList().

inline constexpr std::string_view propertyListErrorDomain = "NSCocoaErrorDomain";
inline constexpr int propertyListReadCorruptError = 3840;
inline constexpr int deepestPropertyList = 128;

[[nodiscard]] Error propertyListError(std::string_view what);

Result<Value> readBinaryPropertyList(std::string_view bytes);
Result<Value> readXmlPropertyList(std::string_view bytes);

/// The moment in the form "2001-01-01T00:00:00Z", or nothing.
[[nodiscard]] std::optional<Value::Date> parsePropertyListDate(std::string_view text);
