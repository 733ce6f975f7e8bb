// SPDX-License-Identifier: Apache-2.0

#include "kit/CheckBundle.h"

#include "kit/Checks.h"

std::vector<Finding> checkBundle(Platform& platform) {
  const InspectedBundle bundle(platform);
  Findings findings;
  for (const auto check : {checkProduct, checkChoices, checkTables, checkPictures, checkWindow, checkFiles})
    check(bundle, findings);
  // The others go by names and choices.
  if (bundle.hasWholeSettings()) {
    for (const auto check : {checkLeftovers, checkTexts, checkPayload, checkPrograms}) check(bundle, findings);
  }
  return findings.sorted();
}
