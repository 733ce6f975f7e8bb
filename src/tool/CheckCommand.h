// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kit/Finding.h"

/// For people to read. `bundle` as it was named.
void writeFindings(const std::vector<Finding>& findings, const std::string& bundle, std::ostream& output);
