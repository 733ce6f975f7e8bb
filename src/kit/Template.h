// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <string_view>

/// What stands for a maker's own names in a new bundle.
inline constexpr std::string_view templateCompany = "Your Company";
inline constexpr std::string_view templateProduct = "Your Product";
inline constexpr std::string_view templateDomain = "com.example.";
inline constexpr std::array templateNames = {templateCompany, templateProduct, templateDomain};
