// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Platform.h"

/// Shows the wizard and returns when the person has closed its window. Fails when there is no window to show, because
/// its interface description is missing or damaged.
Status runWizard(Platform& platform);
