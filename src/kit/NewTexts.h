// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

// Texts of a new bundle.

/// The table of a language, with the English text and its purpose above each key. `bytes` are those of the language's
/// own.
[[nodiscard]] std::string commentedTable(std::string_view bytes);

/// The configuration, with the names of the template.
[[nodiscard]] std::string templateSettings();

/// What stands for the licence.
[[nodiscard]] std::string templateLicence();

/// What is beside the new bundle, and what to do with it.
[[nodiscard]] std::string instructions();
