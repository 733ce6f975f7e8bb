// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "kit/Finding.h"
#include "kit/InspectedBundle.h"

/// A place in the table that says what the installer installs.
[[nodiscard]] inline Place inSettings(std::string_view key) {
  return {.file = std::string(settingsTable), .key = std::string(key)};
}

// One function a topic, each in a file of its name. None changes anything.

void checkChoices(const InspectedBundle& bundle, Findings& findings);
void checkFiles(const InspectedBundle& bundle, Findings& findings);
void checkLeftovers(const InspectedBundle& bundle, Findings& findings);
void checkPayload(const InspectedBundle& bundle, Findings& findings);
void checkPictures(const InspectedBundle& bundle, Findings& findings);
void checkProduct(const InspectedBundle& bundle, Findings& findings);
void checkPrograms(const InspectedBundle& bundle, Findings& findings);
void checkTables(const InspectedBundle& bundle, Findings& findings);
void checkTexts(const InspectedBundle& bundle, Findings& findings);
void checkWindow(const InspectedBundle& bundle, Findings& findings);

/// Texts by their keys.
using Texts = std::map<std::string, std::string, std::less<>>;

/// The texts that the program and the descriptions of the window ask for: those of the reference table, and the maker's
/// own, as the first table has them. What no table has is not among them.
[[nodiscard]] Texts wantedTexts(const InspectedBundle& bundle);

/// The keys of texts that the descriptions of the window name.
[[nodiscard]] std::set<std::string, std::less<>> textKeysOfWindow(const InspectedBundle& bundle);

/// Whether the window finds a picture of that name, in any language.
[[nodiscard]] bool hasPicture(const InspectedBundle& bundle, std::string_view name);
