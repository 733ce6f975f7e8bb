// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "foundation/Result.h"
#include "foundation/Value.h"

/// Reads a property list in its XML or binary form. Untrusted input gives a
/// value or an error. Nesting beyond 128 levels, and a value beyond what the bytes can hold, are errors.
Result<Value> readPropertyList(std::string_view bytes);

/// The XML form; entries with no value are left out. Fails when a text holds a control character, which XML cannot
/// write.
Result<std::string> writePropertyList(const Value& value);
