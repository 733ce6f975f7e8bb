// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Identifiers.h"

class PosixIdentifiers : public Identifiers {
 public:
  [[nodiscard]] std::string makeUuid() override;
};
