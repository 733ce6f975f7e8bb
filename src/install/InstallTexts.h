// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/RichText.h"
#include "install/InstallPlan.h"
#include "install/InstallProgress.h"
#include "install/InstallReport.h"
#include "platform/Platform.h"

// What people are told of an install: before it, while it runs, and afterwards; in their language.

/// Megabytes, rounded up; for ten gigabytes and more, gigabytes.
[[nodiscard]] std::string sizeText(const Platform& platform, std::uint64_t bytes);

/// Why something failed, without the technical words.
[[nodiscard]] std::string reasonText(const Platform& platform, const Error& reason);

/// Room that the install needs and finds, and a warning when no host is served.
[[nodiscard]] std::string planText(const Platform& platform, const InstallPlan& plan);

/// Which version of the host's plug-in is replaced by which, or why it cannot be; empty where there is no other
/// version. `host` is a position in InstallPlan::hosts(). The plan must be a detailed one.
[[nodiscard]] std::string versionText(const Platform& platform, const InstallPlan& plan, std::size_t host);

/// Megabytes done, and the time that the rest takes; empty where there is nothing to copy.
[[nodiscard]] std::string progressText(const Platform& platform, const InstallProgress& progress,
                                       std::optional<std::chrono::seconds> remaining);

/// How an install went.
struct InstallOutcome {
  const InstallReport& report;
  const HostList& hosts;  ///< that it was to serve
  bool isSuccessful = false;
  bool isDenied = false;  ///< rights were refused
};

/// What was installed for which host and where; after a failure, also what failed and why, what is in place, and what
/// to do next. `opening` comes first, unless a success served no host.
[[nodiscard]] RichText outcomeText(const Platform& platform, const InstallOutcome& outcome, const RichText& opening);
