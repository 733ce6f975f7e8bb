// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/files/Elevation.h"

/// Moves the item to a free name (file_exists when it is taken), or exchanges it with the item there in one step, with
/// the rights of this thread.
Status moveItem(const Volume::Spot& from, const Volume::Spot& to, Elevation::Move how);

/// The same with the own rights or, where they do not suffice, with the elevation.
Status moveItem(const Volume::Spot& from, const Volume::Spot& to, Elevation::Move how, Elevation& elevation);

/// Whether an exchange failed because the file system cannot exchange these items.
[[nodiscard]] bool isExchangeMissing(const Status& status);
