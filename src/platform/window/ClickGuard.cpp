// SPDX-License-Identifier: Apache-2.0

#include "platform/window/ClickGuard.h"

#include <cmath>

void ClickGuard::pointerAt(Point place) {
  place_ = place;
  if (std::hypot(place.x - placeAtChange_.x, place.y - placeAtChange_.y) > tremor) hasMoved_ = true;
}

void ClickGuard::contentChanged(Time now) {
  placeAtChange_ = place_;
  changedAt_ = now;
  hasMoved_ = false;
}

bool ClickGuard::accepts(Time now) const { return hasMoved_ || now - changedAt_ >= pause; }
