// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "kit/Finding.h"

// The two halves of the catalogue.

[[nodiscard]] const std::vector<CatalogueEntry>& catalogueOfResources();
[[nodiscard]] const std::vector<CatalogueEntry>& catalogueOfPayload();
