// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "kit/Finding.h"
#include "kit/InspectedBundle.h"

// One function a topic, each in a file of its name. None changes anything.

void checkFiles(const InspectedBundle& bundle, Findings& findings);
void checkLeftovers(const InspectedBundle& bundle, Findings& findings);
void checkPayload(const InspectedBundle& bundle, Findings& findings);
void checkPictures(const InspectedBundle& bundle, Findings& findings);
void checkProduct(const InspectedBundle& bundle, Findings& findings);
void checkPrograms(const InspectedBundle& bundle, Findings& findings);
void checkTables(const InspectedBundle& bundle, Findings& findings);
void checkTexts(const InspectedBundle& bundle, Findings& findings);
void checkWindow(const InspectedBundle& bundle, Findings& findings);

/// Whether the window finds a picture of that name, in any language.
[[nodiscard]] bool hasPicture(const InspectedBundle& bundle, std::string_view name);
