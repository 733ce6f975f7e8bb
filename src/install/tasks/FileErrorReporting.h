// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "install/InstallPlan.h"
#include "install/InstallReport.h"
#include "platform/Platform.h"

/// The alert that tells of a file that could not be installed.
[[nodiscard]] Alert fileErrorAlert(const Platform& platform, const std::string& errorText, const std::string& path);

/// The same with a message that says everything.
[[nodiscard]] Alert fileErrorAlert(const Platform& platform, const std::string& message);

/// An error that is known by its text only.
[[nodiscard]] Error errorWithText(const std::string& text);

/// How much room is needed and how much there is, in the user's language.
[[nodiscard]] std::string shortageText(const Platform& platform, const SpaceShortage& shortage);

/// Logs what of the payload is not installed, and why.
void logSkippedEntries(const Platform& platform, const InstallPlan& plan);
