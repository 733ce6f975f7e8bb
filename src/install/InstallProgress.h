// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/FileSystem.h"
#include "platform/Transaction.h"

/// How much of an install is done, from 0 to 1, by what of the plan is copied and how far the install has come. A file
/// counts for some bytes more than it has: creating it takes its time, however small it is.
struct InstallProgress {
  enum class Phase { staging, flushing, cleaningUp, done };
  TreeSize planned = {};
  CopiedAmount copied = {};
  Phase phase = Phase::staging;

  [[nodiscard]] double fraction() const;
};
