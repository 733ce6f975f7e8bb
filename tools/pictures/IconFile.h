// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QImage>
#include <functional>

/// The bytes of an icon file with a picture for every size that a Mac shows, 16 to 512 points, and for each at two
/// pixels a point. `draw` makes the picture of so many pixels a side.
QByteArray iconFile(const std::function<QImage(int side)>& draw);
