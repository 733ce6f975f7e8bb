// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitBuilder.h"

#include <algorithm>
#include <utility>

#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitMenus.h"
#include "platform/window/appkit/AppKitRows.h"

namespace {

NSRect rectOf(const DescribedElement& widget) {
  auto size = widget.sizeOf("geometry");
  if (!size) size = widget.sizeOf("minimumSize");
  if (!size) size = Size{.width = 100, .height = 30};
  return NSMakeRect(0, 0, size->width, size->height);
}

NSScrollView* makeScrolling(NSView* inner, bool hasBorder) {
  NSScrollView* const scrolled = [[[NSScrollView alloc] initWithFrame:[inner frame]] autorelease];
  [scrolled setDocumentView:inner];
  [scrolled setHasVerticalScroller:YES];
  [scrolled setHasHorizontalScroller:NO];
  [scrolled setAutohidesScrollers:YES];
  [scrolled setBorderType:hasBorder ? NSBezelBorder : NSNoBorder];
  return scrolled;
}

NSView* makeTextView(const DescribedElement& widget) {
  // Only in the usual frame the text lies on a page of its own, else on the window.
  const bool isOnWindow = widget.property("frameShape") != nullptr;
  InstallerTextView* const text = [[[InstallerTextView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [text setEditable:NO];
  [text setSelectable:YES];
  [text setDrawsBackground:!isOnWindow];
  [text setTextContainerInset:isOnWindow ? NSMakeSize(0, 2) : NSMakeSize(8, 10)];
  [text setVerticallyResizable:YES];
  [text setHorizontallyResizable:NO];
  [text setAutoresizingMask:NSViewWidthSizable];
  [text setMaxSize:NSMakeSize(1e7, 1e7)];
  [[text textContainer] setWidthTracksTextView:YES];
  NSScrollView* const scrolled = makeScrolling(text, !isOnWindow);
  [scrolled setDrawsBackground:!isOnWindow];
  return scrolled;
}

NSView* makeLabel(const DescribedElement& widget) {
  InstallerLabel* const label = [[[InstallerLabel alloc] initWithFrame:rectOf(widget)] autorelease];
  [label setWraps:widget.flagOf("wordWrap")];
  [label setMargin:widget.numberOf("margin", 0)];
  const DescribedElement* const font = widget.property("font");
  const DescribedElement* const bold = font != nullptr ? font->child("bold") : nullptr;
  const double size = widget.numberOf("textSize", usualTextSize);
  const bool isBold = bold != nullptr && bold->text == "true";
  if (isBold || size != usualTextSize) {
    [label setFont:isBold ? [NSFont boldSystemFontOfSize:size] : [NSFont systemFontOfSize:size]];
  }
  return label;
}

NSView* makeButton(const DescribedElement& widget, bool isCheckBox) {
  NSButton* const button = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 80, 26)] autorelease];
  [button setTitle:@""];
  if (isCheckBox) {
    [button setButtonType:NSSwitchButton];
  } else {
    [button setButtonType:NSMomentaryPushInButton];
    [button setBezelStyle:NSRoundedBezelStyle];
    if (widget.flagOf("default")) [button setKeyEquivalent:@"\r"];
  }
  [button setFont:[NSFont systemFontOfSize:usualTextSize]];
  return button;
}

NSView* makeLine() {
  NSTextField* const line = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 100, 22)] autorelease];
  [line setEditable:NO];
  [line setSelectable:YES];
  [line setFont:[NSFont systemFontOfSize:usualTextSize]];
  [[line cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
  return line;
}

NSView* makeBar() {
  NSProgressIndicator* const bar = [[[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, 100, 14)] autorelease];
  [bar setMinValue:0];
  [bar setMaxValue:1];
  return bar;
}

NSView* makeTable() {
  InstallerTable* const table = [[[InstallerTable alloc] initWithFrame:NSMakeRect(0, 0, 380, 100)] autorelease];
  [table setUp];
  return makeScrolling(table, /*hasBorder=*/true);
}

NSView* makeView(const DescribedElement& widget) {
  const std::string kind = widget.attribute("class");
  if (kind == "QLabel") return makeLabel(widget);
  if (kind == "QTextEdit") return makeTextView(widget);
  if (kind == "QPushButton" || kind == "QCheckBox") return makeButton(widget, kind == "QCheckBox");
  if (kind == "QLineEdit") return makeLine();
  if (kind == "QProgressBar") return makeBar();
  if (kind == "QListWidget") return makeTable();
  return [[[InstallerView alloc] initWithFrame:rectOf(widget)] autorelease];
}

class Builder {
 public:
  explicit Builder(BuiltInterface& built) : built_(built) {}

  NSView* build(const DescribedElement& widget) {
    NSView* const view = makeView(widget);
    note(widget, view);
    const bool isShelf = widget.flagOf("shelf");
    for (const DescribedElement& inner : widget.children) {
      if (inner.name == "layout" && [view isKindOfClass:[InstallerView class]]) {
        [(InstallerView*)view setLayout:buildLayout(inner, view)];
      } else if (inner.name == "widget") {
        buildAtPlace(inner, view);
      }
    }
    // Holders of pages that the program takes out are never shown themselves.
    if (isShelf) [view setHidden:YES];
    return view;
  }

  void note(const DescribedElement& element, NSObject* object) {
    auto& [name, named] = built_.objects.emplace_back();
    name = element.attribute("name");
    named.object = ObjectReference<NSObject>([object retain]);
    named.connections = element.connections();
  }

 private:
  /// Without a layout around it, a widget has the place that it says.
  void buildAtPlace(const DescribedElement& widget, NSView* holder) {
    NSView* const view = build(widget);
    [holder addSubview:view];
    const auto [origin, size] = placeOf(widget);
    [view setFrame:NSMakeRect(origin.x, [holder bounds].size.height - origin.y - size.height, size.width, size.height)];
  }

  std::unique_ptr<LayoutItem> buildLayout(const DescribedElement& layout, NSView* holder) {
    std::unique_ptr<BoxLayout> made = layoutOf(layout);
    for (const DescribedElement& item : layout.children) {
      if (item.name != "item" || item.children.empty()) continue;
      const DescribedElement& inner = item.children.front();
      if (inner.name == "layout") {
        made->add(buildLayout(inner, holder));
      } else if (inner.name == "spacer") {
        made->add(spaceOf(inner));
      } else if (inner.name == "widget") {
        NSView* const view = build(inner);
        [holder addSubview:view];
        made->add(std::make_unique<ViewItem>(view, limitsOf(inner, item.attribute("alignment"))));
      }
    }
    return made;
  }

  BuiltInterface& built_;
};

/// The key view loop, as the description says, from the last control to the first one again.
void chain(const DescribedElement& description, const BuiltInterface& built) {
  const DescribedElement* const stops = description.child("tabstops");
  if (stops == nullptr) return;
  NSView* first = nil;
  NSView* last = nil;
  for (const DescribedElement& stop : stops->children) {
    id const found = built.find(stop.text);
    if (![found isKindOfClass:[NSView class]]) continue;
    NSView* const view = innerView(found);
    if (last != nil) [last setNextKeyView:view];
    if (first == nil) first = view;
    last = view;
  }
  if (last != nil) [last setNextKeyView:first];
}

NSWindow* makeWindow(NSView* content) {
  NSWindow* const window =
      [[NSWindow alloc] initWithContentRect:[content frame]
                                  styleMask:NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask
                                    backing:NSBackingStoreBuffered
                                      defer:YES];
  [window setReleasedWhenClosed:NO];
  [window setContentView:content];
  return window;
}

}  // namespace

id BuiltInterface::find(const std::string& name) const {
  const auto found = std::ranges::find(objects, name, [](const auto& entry) { return entry.first; });
  return found != objects.end() ? found->second.object.get() : nil;
}

BuiltInterface buildInterface(const DescribedElement& description) {
  BuiltInterface built;
  const DescribedElement* const top = description.child("widget");
  if (top == nullptr) return built;
  Builder builder(built);
  if (top->attribute("class") == "QMainWindow") {
    const auto content = std::ranges::find_if(top->children, [](const DescribedElement& element) {
      return element.name == "widget" && element.attribute("class") != "QMenuBar";
    });
    if (content == top->children.end()) return built;
    NSView* const view = builder.build(*content);
    built.top = ObjectReference<NSObject>(makeWindow(view));
    builder.note(*top, built.top.get());
    built.menu =
        buildMenus(*top, [&](const DescribedElement& element, NSObject* item) { builder.note(element, item); });
  } else {
    built.top = ObjectReference<NSObject>([builder.build(*top) retain]);
  }
  chain(description, built);
  return built;
}
