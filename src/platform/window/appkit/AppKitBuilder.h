// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/window/DescribedLayout.h"
#include "platform/window/appkit/ObjectReference.h"

/// What was built: a window or a view at the top, and everything that has a name.
struct BuiltInterface {
  struct Named {
    ObjectReference<NSObject> object;
    std::vector<std::pair<std::string, std::string>> connections;  ///< see DescribedElement::connections()
  };

  ObjectReference<NSObject> top;
  std::vector<std::pair<std::string, Named>> objects;  ///< in the order of the description
  ObjectReference<NSMenu> menu;                        ///< the menus of a window

  /// Nil when there is none.
  [[nodiscard]] id find(const std::string& name) const;
};

/// Builds the controls of this system that stand for those of the description, laid out as it says. A widget of an
/// unknown kind is a plain view.
[[nodiscard]] BuiltInterface buildInterface(const DescribedElement& description);
