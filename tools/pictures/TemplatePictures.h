// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>

// Grey pictures that a maker's own take the place of.

/// Behind the step list: 196 by 460 points, translucent.
[[nodiscard]] QImage templateProduct();

/// The installer's icon, of so many pixels a side.
[[nodiscard]] QImage templateInstaller(int side);
