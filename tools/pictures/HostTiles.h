// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>

/// The icon of a host application of the sample volume: two letters on a tile. They are made of strokes, so that no
/// font is needed; there are those of "PH", "EL", "LI" and "PE".
[[nodiscard]] QImage hostTile(const char* letters, const QColor& colour);
