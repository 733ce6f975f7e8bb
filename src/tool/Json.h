// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "kit/Finding.h"
#include "tool/HostSurvey.h"
#include "tool/PlanReport.h"
#include "tool/Remover.h"
#include "tool/VerifyReport.h"

// The answers in JSON, as docs/for-administrators.md describes them. Bytes that are not UTF-8 become U+FFFD.

[[nodiscard]] std::string planJson(const PlanReport& report, const std::string& volume, const ToolTexts& texts);
[[nodiscard]] std::string hostsJson(const std::vector<HostFacts>& hosts, const std::string& volume,
                                    const ToolTexts& texts);
[[nodiscard]] std::string verifyJson(const VerifyReport& report, const std::string& volume, const ToolTexts& texts);
/// `outcome` is null for what would be done.
[[nodiscard]] std::string removalJson(const RemovalPlan& plan, const RemovalOutcome* outcome, const std::string& volume,
                                      const ToolTexts& texts);
/// `bundle` as it was named.
[[nodiscard]] std::string findingsJson(const std::vector<Finding>& findings, const std::string& bundle);
