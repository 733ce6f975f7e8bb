// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPalette>

enum class Appearance { light, dark };

/// The appearance that the person wants: INSTALLER_APPEARANCE ("light" or "dark"), GTK_THEME, or that of the desktop's
/// own palette.
[[nodiscard]] Appearance wantedAppearance(const QPalette& desktop);

[[nodiscard]] QPalette paletteFor(Appearance appearance);

[[nodiscard]] bool isDark(const QPalette& palette);
