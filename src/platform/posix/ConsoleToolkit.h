#pragma once

#include "platform/Toolkit.h"

/// Talks to the person through standard error, and takes the default for an answer.
class ConsoleToolkit : public Toolkit {
 public:
  AlertAnswer runAlertPanel(const Alert& alert) override;
};
