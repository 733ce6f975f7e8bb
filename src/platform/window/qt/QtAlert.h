// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QWidget>

#include "platform/Toolkit.h"

/// Shows the alert on the window (or on its own, when that is null) and waits for the answer. Escape is the alternate
/// button, or the only one. An alert that goes with its window is answered like that, too.
[[nodiscard]] AlertAnswer askAlert(const Alert& alert, QWidget* window, const Picture& picture);
