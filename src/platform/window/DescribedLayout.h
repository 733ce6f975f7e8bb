// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/window/BoxLayout.h"
#include "platform/window/InterfaceFile.h"

// What a description says of places and sizes, in points.

/// How large an item of a layout may be.
struct Limits {
  Size smallest = {};
  Size largest = {.width = LayoutItem::anyWidth, .height = LayoutItem::anyWidth};
  bool growsAcross = false;
  bool growsDown = false;
  bool isAtTop = false;    ///< is as high as it needs, at the top of its room
  bool isIgnored = false;  ///< is as wide as there is room, whatever it wants
};

[[nodiscard]] Size larger(const Size& one, const Size& other);
[[nodiscard]] Size smaller(const Size& one, const Size& other);

/// Returns the limits of a widget, which lies in its layout with this alignment.
[[nodiscard]] Limits limitsOf(const DescribedElement& widget, const std::string& alignment);

/// Returns a layout with nothing in it yet.
[[nodiscard]] std::unique_ptr<BoxLayout> layoutOf(const DescribedElement& layout);

[[nodiscard]] std::unique_ptr<LayoutItem> spaceOf(const DescribedElement& spacer);

/// Turns a description around, for a language that is read from the right.
void mirror(DescribedElement& description);

/// Returns the place of a widget without a layout around it, from the upper left corner of what holds it.
[[nodiscard]] Rect placeOf(const DescribedElement& widget);
