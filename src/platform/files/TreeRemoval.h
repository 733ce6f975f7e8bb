// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "foundation/Result.h"

/// Removes the item with everything below it, following no link. Stops at the first item that cannot be removed.
[[nodiscard]] Status removeTree(int folder, const std::string& name);

/// Success when this thread has the rights that removeTree() needs and nothing in the tree is immutable, else the first
/// error. Looks at every item. Without `withOwnRights`, only immutable items count.
[[nodiscard]] Status checkRemovable(int folder, const std::string& name, bool withOwnRights);
