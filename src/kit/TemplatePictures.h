// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <string_view>

/// A picture of a new bundle that its maker replaces.
struct TemplatePicture {
  std::string_view name;  ///< of the file in the resources
  std::string_view bytes;
};

[[nodiscard]] const std::array<TemplatePicture, 2>& templatePictures();
