// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What the file of a picture says of itself.
struct PictureFile {
  std::string_view format;  ///< "png", "icns", "tiff" or "jpeg"; empty for anything else
  std::uint32_t width = 0;  ///< in pixels, of the largest picture in the file
  std::uint32_t height = 0;
  std::string_view damage = {};  ///< why it cannot be shown; empty when nothing is wrong
};

/// Reads everything but the pixels: structure, sizes, and the check sums where a format has them.
[[nodiscard]] PictureFile inspectPicture(std::string_view bytes);
