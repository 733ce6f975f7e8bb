// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

// The same walk through the wizard in every kind of window, and what is written down of each page on the way.

/// What the window's driver does in one step.
struct Step {
  enum class Kind { print, press, tick, choose };
  Kind kind;
  std::string text;  ///< name of the page, or caption of the button or of the menu's item
  std::size_t row = 0;
};

inline std::vector<Step> walk() {
  using Kind = Step::Kind;
  return {{Kind::print, "licence"},
          {Kind::press, "Continue"},
          {Kind::press, "Agree"},
          {Kind::print, "applications"},
          {Kind::tick, "", 1},
          {Kind::print, "applications, one of them not ticked"},
          {Kind::choose, "Allow Installing into Another Folder"},
          {Kind::press, "Custom…"},
          {Kind::print, "another folder"},
          {Kind::press, "Go Back"},
          {Kind::print, "applications, after another folder"},
          {Kind::press, "Continue"},
          {Kind::print, ""},  // four ticks for the install
          {Kind::print, ""},
          {Kind::print, ""},
          {Kind::print, ""},
          {Kind::print, "summary"},
          {Kind::press, "Finish"}};
}

/// What a control shows, in one line.
struct ShownControl {
  double fromTop = 0;
  double fromLeft = 0;
  std::string text;
};

/// The controls from the top to the bottom, and in a row from the left to the right.
std::string pageText(const std::string& name, const std::string& title, std::vector<ShownControl> controls);
