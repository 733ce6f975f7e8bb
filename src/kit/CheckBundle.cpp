// SPDX-License-Identifier: Apache-2.0

#include "kit/CheckBundle.h"

#include "kit/Checks.h"

std::vector<Finding> checkBundle(Platform& platform) {
  const InspectedBundle bundle(platform);
  Findings findings;
  for (const auto check : {checkProduct, checkLeftovers, checkTables, checkTexts, checkPictures, checkWindow,
                           checkPayload, checkFiles, checkPrograms}) {
    check(bundle, findings);
  }
  return findings.sorted();
}
