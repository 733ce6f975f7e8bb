// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/Platform.h"

// Names of the product: the entries of the strings table "installer". A missing entry is an empty text.

// As folders and files are named; empty for a name that would lead elsewhere.
[[nodiscard]] std::string companyName(const Platform& platform);
[[nodiscard]] std::string productName(const Platform& platform);

// As people read them.
[[nodiscard]] std::string shownCompanyName(const Platform& platform);
[[nodiscard]] std::string shownProductName(const Platform& platform);

/// The path so that it reads from the left among texts of a language that is read from the right.
[[nodiscard]] std::string shownInText(const Platform& platform, const std::string& path);

/// Preferences domain of the installed product.
[[nodiscard]] std::string productPreferencesDomain(const Platform& platform);
