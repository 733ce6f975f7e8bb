// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <functional>

#include "platform/window/InterfaceFile.h"
#include "platform/window/appkit/ObjectReference.h"

/// The menus of a window of a description. `note` is told of every menu and item that the description names.
[[nodiscard]] ObjectReference<NSMenu> buildMenus(const DescribedElement& window,
                                                 const std::function<void(const DescribedElement&, NSObject*)>& note);

/// Captions of what every application of this system has, by their key in the bundle's table.
using MenuText = std::function<NSString*(const char* key)>;

/// Adds what every application of this system has: to the first menu, what hides the others; menus to copy texts, and
/// for windows.
void addStandardMenus(NSMenu* menu, const MenuText& text);
