// SPDX-License-Identifier: Apache-2.0

#include "install/InstallProgress.h"

#include <algorithm>

double InstallProgress::fraction() const {
  constexpr double bytesOfAFile = 50'000;
  constexpr double staged = 0.9;
  constexpr double flushed = 0.97;
  if (phase == Phase::done) return 1;
  if (phase == Phase::cleaningUp) return flushed;
  if (phase == Phase::flushing) return staged;
  const double all = static_cast<double>(planned.bytes) + bytesOfAFile * static_cast<double>(planned.files);
  const double done = static_cast<double>(copied.bytes) + bytesOfAFile * static_cast<double>(copied.files);
  return all > 0 ? staged * std::min(done / all, 1.0) : 0;
}
