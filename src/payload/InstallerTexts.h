// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/Platform.h"

// Names of the product: entries of the strings table "installer". A missing entry is an empty text. What else the table
// says is in Configuration.h.

// As folders and files are named; empty for a name that would lead elsewhere. A "/" of the product is a ":" there,
// which a Mac shows as "/".
[[nodiscard]] std::string companyName(const Platform& platform);
[[nodiscard]] std::string productName(const Platform& platform);

// As people read them.
[[nodiscard]] std::string shownCompanyName(const Platform& platform);
[[nodiscard]] std::string shownProductName(const Platform& platform);

/// The path so that it reads from the left among texts of a language that is read from the right.
[[nodiscard]] std::string shownInText(const Platform& platform, const std::string& path);

/// Preferences domain of the installed product.
[[nodiscard]] std::string productPreferencesDomain(const Platform& platform);
/// The one in which the installer keeps its own settings.
[[nodiscard]] std::string installerPreferencesDomain(const Platform& platform);
