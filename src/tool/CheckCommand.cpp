// SPDX-License-Identifier: Apache-2.0

#include "tool/CheckCommand.h"

#include <ostream>

#include "foundation/Text.h"

void writeFindings(const std::vector<Finding>& findings, const std::string& bundle, std::ostream& output) {
  const auto line = [&](const std::string& text) { output << onOneLine(text) << '\n'; };
  for (const Finding& finding : findings) {
    line(shownPlace(finding.place) + ": " + std::string(nameOf(finding.severity)) + ": " + finding.what + " [" +
         finding.id + "]");
    line("    " + finding.consequence);
    line("    Fix: " + finding.fix);
  }
  line(bundle + ": " + (findings.empty() ? "nothing is wrong" : "mistakes: " + std::to_string(findings.size())));
}
