// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitMenus.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace {

/// "Ctrl+Q" of a description is the command key and Q here.
NSString* keyOf(const DescribedElement& action) {
  const std::string shortcut = action.textOf("shortcut");
  constexpr std::string_view command = "Ctrl+";
  if (!shortcut.starts_with(command) || shortcut.size() != command.size() + 1) return @"";
  return toObject(std::string(1, static_cast<char>(std::tolower(static_cast<unsigned char>(shortcut.back())))));
}

NSMenuItem* addItem(NSMenu* menu, NSString* title, SEL action, NSString* key) {
  ObjectReference<NSMenuItem> item([[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key]);
  [menu addItem:item.get()];
  return item.get();
}

/// Menus are not enabled by who answers to them, but as they are bound.
NSMenu* addMenu(NSMenu* bar, NSString* title, bool isBound) {
  NSMenuItem* const item = addItem(bar, title, nullptr, @"");
  ObjectReference<NSMenu> menu([[NSMenu alloc] initWithTitle:title]);
  [menu.get() setAutoenablesItems:!isBound];
  [item setSubmenu:menu.get()];
  return menu.get();
}

const DescribedElement* actionNamed(const DescribedElement& window, const std::string& name) {
  const auto found = std::ranges::find_if(window.children, [&](const DescribedElement& element) {
    return element.name == "action" && element.attribute("name") == name;
  });
  return found != window.children.end() ? &*found : nullptr;
}

}  // namespace

ObjectReference<NSMenu> buildMenus(const DescribedElement& window,
                                   const std::function<void(const DescribedElement&, NSObject*)>& note) {
  ObjectReference<NSMenu> bar([[NSMenu alloc] initWithTitle:@""]);
  for (const DescribedElement& described : window.children) {
    if (described.attribute("class") != "QMenuBar") continue;
    for (const DescribedElement& menu : described.children) {
      if (menu.attribute("class") != "QMenu") continue;
      NSMenu* const made = addMenu(bar.get(), @"", /*isBound=*/true);
      note(menu, [bar.get() itemAtIndex:[bar.get() numberOfItems] - 1]);
      for (const DescribedElement& entry : menu.children) {
        if (entry.name != "addaction") continue;
        const DescribedElement* const action = actionNamed(window, entry.attribute("name"));
        if (action != nullptr) {
          note(*action, addItem(made, @"", nullptr, keyOf(*action)));
        } else {
          [made addItem:[NSMenuItem separatorItem]];
        }
      }
    }
  }
  return bar;
}

void addStandardMenus(NSMenu* menu, const MenuText& text) {
  NSMenu* const application = [menu numberOfItems] > 0 ? [[menu itemAtIndex:0] submenu] : nil;
  if (application != nil) {
    const NSInteger last = [application numberOfItems] - 1;
    ObjectReference<NSMenuItem> others([[NSMenuItem alloc] initWithTitle:text("menu_hide_others")
                                                                  action:@selector(hideOtherApplications:)
                                                           keyEquivalent:@"h"]);
    [others.get() setKeyEquivalentModifierMask:NSCommandKeyMask | NSAlternateKeyMask];
    [others.get() setTarget:NSApp];
    ObjectReference<NSMenuItem> all([[NSMenuItem alloc] initWithTitle:text("menu_show_all")
                                                               action:@selector(unhideAllApplications:)
                                                        keyEquivalent:@""]);
    [all.get() setTarget:NSApp];
    [application insertItem:others.get() atIndex:std::max<NSInteger>(last, 0)];
    [application insertItem:all.get() atIndex:std::max<NSInteger>(last, 0) + 1];
    [application insertItem:[NSMenuItem separatorItem] atIndex:std::max<NSInteger>(last, 0) + 2];
  }
  NSMenu* const edit = addMenu(menu, text("menu_edit"), /*isBound=*/false);
  addItem(edit, text("menu_copy"), @selector(copy:), @"c");
  addItem(edit, text("menu_select_all"), @selector(selectAll:), @"a");
  NSMenu* const window = addMenu(menu, text("menu_window"), /*isBound=*/false);
  addItem(window, text("menu_minimize"), @selector(performMiniaturize:), @"m");
  addItem(window, text("menu_close"), @selector(performClose:), @"w");
  [NSApp setWindowsMenu:window];
}
