// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Driving.h"

/// For a module that takes the place of the installer's Window.so, whose own lies beside it as RealWindow.so: the
/// program starts as ever and shows its real window, and the module sees all of it from inside and works it.
///
/// Defined by each such module; called when the application is there, and no window yet.
void startDriving();
