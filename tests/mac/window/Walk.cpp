// SPDX-License-Identifier: Apache-2.0

#include "Walk.h"

#include <algorithm>
#include <cmath>
#include <string_view>

std::string pageText(const std::string& name, const std::string& title, std::vector<ShownControl> controls) {
  // The list of steps, then the page. The fonts of two systems differ by a few points, and rows by more.
  constexpr double sameRow = 12;
  constexpr double pageBegins = 196;
  const auto page = std::partition(controls.begin(), controls.end(),
                                   [](const ShownControl& control) { return control.fromLeft < pageBegins; });
  std::sort(controls.begin(), page, [](const ShownControl& one, const ShownControl& other) {
    return std::abs(one.fromTop - other.fromTop) > sameRow ? one.fromTop < other.fromTop
                                                           : one.fromLeft < other.fromLeft;
  });
  std::sort(page, controls.end(),
            [](const ShownControl& one, const ShownControl& other) { return one.fromTop < other.fromTop; });
  for (auto row = page; row != controls.end();) {
    const auto end = std::find_if(
        row, controls.end(), [&](const ShownControl& control) { return control.fromTop - row->fromTop > sameRow; });
    std::sort(row, end,
              [](const ShownControl& one, const ShownControl& other) { return one.fromLeft < other.fromLeft; });
    row = end;
  }
  std::string text = "== " + name + ": " + title + "\n";
  for (const ShownControl& control : controls) text += control.text + "\n";
  // A space that breaks no line looks like any other.
  constexpr std::string_view keptTogether = "\xC2\xA0";
  for (std::size_t at = 0; (at = text.find(keptTogether, at)) != std::string::npos;) text.replace(at, 2, " ");
  return text;
}
