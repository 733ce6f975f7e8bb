// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Platform.h"

/// Removes stale manifests from the maker's folder, for the applications to make them anew.
void cleanManifests(Platform& platform);
