// SPDX-License-Identifier: Apache-2.0

#include "install/InstallPace.h"

#include <cmath>

namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds untilKnown(2);
constexpr Seconds between(0.25);  ///< two looks at the rate
constexpr Seconds memory(5);      ///< what is longer ago counts for little

}  // namespace

void InstallPace::begin(Time now) {
  *this = {};
  begun_ = noted_ = now;
}

void InstallPace::note(double fraction, Time now) {
  const Seconds passed = now - noted_;
  if (passed < between) return;
  const double rate = (fraction - fraction_) / passed.count();
  const double weight = noted_ == begun_ ? 1 : 1 - std::exp(-passed.count() / memory.count());
  rate_ += weight * (rate - rate_);
  fraction_ = fraction;
  noted_ = now;
}

std::optional<std::chrono::seconds> InstallPace::remaining() const {
  if (noted_ - begun_ < untilKnown || rate_ <= 0) return std::nullopt;
  return std::chrono::seconds(std::llround(std::ceil((1 - fraction_) / rate_)));
}
