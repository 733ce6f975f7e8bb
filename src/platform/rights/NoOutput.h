#pragma once

#include "platform/Authorization.h"

/// The output of a change that no program makes.
class NoOutput : public CommunicationsPipe {
 public:
  std::size_t read(char* /*bytes*/, std::size_t /*size*/) override { return 0; }
};
