// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitBindings.h"

#include <algorithm>
#include <optional>

#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitPicture.h"
#include "platform/window/appkit/AppKitRichText.h"
#include "platform/window/appkit/AppKitRows.h"
#include "platform/window/appkit/DockProgress.h"

namespace {

template <class Class>
bool isA(id object) {
  return [object isKindOfClass:[Class class]];
}

/// For what takes plain text.
ShowValue showPlain(std::function<void(NSString*)> set) {
  return [set = std::move(set)](const ShownValue& value) {
    const auto text = plainText(value);
    NSString* const shown = text ? toObject(*text) : nil;
    if (shown != nil) set(shown);
    return shown != nil;
  };
}

ShowValue showInTextView(NSTextView* view) {
  return [view](const ShownValue& value) {
    const auto* const rich = std::get_if<RichText>(&value);
    const auto plain = plainText(value);
    if (rich == nullptr && !plain) return false;
    [[view textStorage] setAttributedString:attributedText(rich != nullptr ? *rich : RichText(*plain), usualTextSize)];
    [view scrollRangeToVisible:NSMakeRange(0, 0)];
    return true;
  };
}

ShowValue showText(id control) {
  if (isA<NSView>(control)) {
    NSView* const inner = innerView(control);
    if (isA<NSTextView>(inner)) return showInTextView((NSTextView*)inner);
  }
  if (isA<InstallerLabel>(control)) {
    return showPlain([control](NSString* text) {
      [control showText:text];
      layOutAround(control);
    });
  }
  if (isA<NSButton>(control)) {
    return showPlain([control](NSString* text) {
      [control setTitle:text];
      layOutAround(control);
    });
  }
  if (isA<NSTextField>(control)) return showPlain([control](NSString* text) { [control setStringValue:text]; });
  if (isA<NSMenuItem>(control)) {
    return showPlain([control](NSString* text) {
      [control setTitle:text];
      [[control submenu] setTitle:text];
    });
  }
  return {};
}

ShowValue showEnabled(id control) {
  if (isA<NSControl>(control) || isA<NSMenuItem>(control)) {
    return showFlag([control](bool flag) { [control setEnabled:flag]; });
  }
  return {};
}

ShowValue showVisible(id control) {
  if (isA<NSView>(control)) {
    return showFlag([control](bool flag) {
      [control setHidden:!flag];
      layOutAround(control);
    });
  }
  if (isA<NSMenuItem>(control)) return showFlag([control](bool flag) { [control setHidden:!flag]; });
  return {};
}

ShowValue showTicked(id control) {
  if (!isA<NSButton>(control) && !isA<NSMenuItem>(control)) return {};
  return showFlag([control](bool flag) { [control setState:flag ? NSOnState : NSOffState]; });
}

ShowValue showImage(id control) {
  if (!isA<InstallerLabel>(control)) return {};
  return showPicture([control](const Picture& picture) { [control showPicture:imageOf(picture)]; });
}

ShowValue showInBar(id control) {
  if (!isA<NSProgressIndicator>(control)) return {};
  return showProgress([control](std::optional<double> done) {
    [control setIndeterminate:!done];
    if (done) [control setDoubleValue:*done];
    done ? [control stopAnimation:nil] : [control startAnimation:nil];
    showProgressInDock(done);
  });
}

ShowValue showTitle(id control) {
  if (!isA<NSWindow>(control)) return {};
  return showPlain([control](NSString* text) { [control setTitle:text]; });
}

/// What a screen reader calls it.
ShowValue showAccessibleName(id control) {
  if (!isA<NSView>(control)) return {};
  NSView* const inner = innerView(control);
  return showPlain([inner](NSString* text) { [inner setAccessibilityLabel:text]; });
}

ShowValue showRows(id control, const std::function<Picture()>& genericPicture) {
  NSView* const inner = isA<NSView>(control) ? innerView(control) : nil;
  if (!isA<InstallerTable>(inner)) return {};
  return [inner, genericPicture](const ShownValue& value) {
    const auto* const rows = std::get_if<std::vector<ListRow>>(&value);
    if (rows == nullptr) return false;
    std::vector<ListRow> shown = *rows;
    for (ListRow& row : shown) {
      if (row.picture == nullptr) row.picture = genericPicture();
    }
    [(InstallerTable*)inner showRows:shown];
    return true;
  };
}

struct Kind {
  const char* name;
  ShowValue (*make)(id control);
};
constexpr Kind kinds[] = {{"bindText", showText},     {"bindEnabled", showEnabled},    {"bindVisible", showVisible},
                          {"bindTicked", showTicked}, {"bindImage", showImage},        {"bindProgress", showInBar},
                          {"bindTitle", showTitle},   {"bindName", showAccessibleName}};

}  // namespace

bool AppKitControl::isOnHiddenPage() const {
  return isA<NSView>(control_) && [(NSView*)control_ isHiddenOrHasHiddenAncestor];
}

ShowValue makeBinding(const std::string& name, id control, const std::function<Picture()>& genericPicture) {
  if (name == "bindRows") return showRows(control, genericPicture);
  const auto* const kind = std::ranges::find(kinds, name, &Kind::name);
  return kind != std::end(kinds) ? kind->make(control) : ShowValue();
}
