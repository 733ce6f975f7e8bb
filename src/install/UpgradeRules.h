// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/Platform.h"

// Which of two items is the newer one. Both are asked when an install is planned, and again when an item is put in
// place, because the disk can change in between.

/// Whether the bundle at `source` may take the place of what is there: true when nothing, or no bundle, is there, or
/// when the offered version is not older.
[[nodiscard]] bool isFileOkToInstallByBundleVersion(const Platform& platform, const std::string& source,
                                                    const std::string& alreadyThere);

/// The same by the dates of last modification. An empty folder may always be replaced.
[[nodiscard]] bool isFileOkToInstallByModificationTime(const Platform& platform, const std::string& source,
                                                       const std::string& alreadyThere);
