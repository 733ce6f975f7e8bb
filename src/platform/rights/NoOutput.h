// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Authorization.h"

/// Empty output, for a change that is made without a program.
class NoOutput : public CommunicationsPipe {
 public:
  std::size_t read(char* /*bytes*/, std::size_t /*size*/) override { return 0; }
};
