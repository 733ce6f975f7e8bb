// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

// Names of files as the volumes of Macs treat them. Names that are no UTF-8 are returned as they are.

/// The name with composed characters (NFC), which is how names are best shipped. Characters that are composed of others
/// than a base and marks after it are left alone.
[[nodiscard]] std::string composedName(std::string_view name);

/// The same for all names that a volume takes for one, which keeps apart neither small and capital letters nor composed
/// and decomposed ones.
[[nodiscard]] std::string nameOnVolume(std::string_view name);
