// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

/// Shows how much is done on the application's icon in the Dock; nothing once all of it is done, or when nobody knows.
void showProgressInDock(std::optional<double> done);
