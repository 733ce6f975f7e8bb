// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>
#include <string_view>

/// The first picture of a TIFF file with four uncompressed bytes for each pixel, which is what small pictures are kept
/// in. Reading it here spares the first page the nine libraries of Qt's plug-in for the format. Null for any other
/// file, damaged ones among them.
[[nodiscard]] QImage readPlainTiff(std::string_view bytes);
