// SPDX-License-Identifier: Apache-2.0

// Walks through the wizard in the window of this system's classes and prints what each page shows.
#import <AppKit/AppKit.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Walk.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitRows.h"
#include "platform/window/appkit/AppKitRunLoop.h"
#include "platform/window/appkit/AppKitUserInterface.h"
#include "shell/Wizard.h"

namespace {

std::string pictures;  ///< folder for screenshots; empty for none

NSWindow* mainWindow() {
  NSArray* const windows = [NSApp windows];
  for (NSUInteger i = 0; i < [windows count]; ++i) {
    NSWindow* const window = [windows objectAtIndex:i];
    if ([window isVisible] && [[window contentView] isKindOfClass:[InstallerView class]]) return window;
  }
  return nil;
}

/// One line for what a view shows; empty for one that only holds others.
std::string shownIn(NSView* view) {
  if ([view isKindOfClass:[InstallerLabel class]]) {
    InstallerLabel* const label = (InstallerLabel*)view;
    const std::string text = toText([label shownText]);
    return [label shownPicture] != nil ? "(picture)" : text.empty() ? "" : "text: " + text;
  }
  if ([view isKindOfClass:[InstallerTextView class]]) return "page: " + toText([(NSTextView*)view string]);
  if ([view isKindOfClass:[InstallerTable class]]) {
    std::string text = "list:";
    for (const ListRow& row : [(InstallerTable*)view shownRows]) {
      text += std::string(row.isTicked ? " [x] " : " [ ] ") + row.text + " (" + row.detail + ")";
    }
    return text;
  }
  if ([view isKindOfClass:[NSButton class]]) {
    NSButton* const button = (NSButton*)view;
    const bool isBox = ![button isBordered];
    return std::string(isBox ? ([button state] == NSOnState ? "box [x] " : "box [ ] ") : "button: ") +
           toText([button title]) + ([button isEnabled] ? "" : " (disabled)");
  }
  if ([view isKindOfClass:[NSTextField class]]) return "line: " + toText([(NSTextField*)view stringValue]);
  if ([view isKindOfClass:[NSProgressIndicator class]]) return "progress";
  return "";
}

void collect(NSWindow* window, NSView* view, std::vector<ShownControl>& all) {
  if ([view isHidden]) return;
  NSView* const inner = innerView(view);
  const std::string text = shownIn(inner);
  if (!text.empty()) {
    const NSRect rect = [view convertRect:[view bounds] toView:nil];
    const CGFloat top = [[window contentView] bounds].size.height - rect.origin.y - rect.size.height;
    all.push_back({top, rect.origin.x, text});
    return;
  }
  NSArray* const views = [view subviews];
  for (NSUInteger i = 0; i < [views count]; ++i) collect(window, [views objectAtIndex:i], all);
}

void print(const std::string& name) {
  NSWindow* const window = mainWindow();
  std::vector<ShownControl> all;
  collect(window, [window contentView], all);
  std::fputs(pageText(name, toText([window title]), std::move(all)).c_str(), stdout);
  if (pictures.empty()) return;
  [window display];
  const std::string command = "import -window root '" + pictures + "/" + name + ".png'";
  if (std::system(command.c_str()) != 0) std::fprintf(stderr, "no picture of %s\n", name.c_str());
}

id named(NSView* view, Class kind, NSString* title) {
  if ([view isHidden]) return nil;
  if ([view isKindOfClass:kind] && [[(NSButton*)view title] isEqualToString:title]) return view;
  NSArray* const views = [view subviews];
  for (NSUInteger i = 0; i < [views count]; ++i) {
    if (id const found = named([views objectAtIndex:i], kind, title)) return found;
  }
  return nil;
}

void press(NSString* title) {
  NSArray* const windows = [NSApp windows];
  for (NSUInteger i = 0; i < [windows count]; ++i) {
    NSWindow* const window = [windows objectAtIndex:i];
    NSButton* const button = named([window contentView], [NSButton class], title);
    if (![window isVisible] || button == nil) continue;
    [button performClick:nil];
    return;
  }
  std::printf("no button %s\n", [title UTF8String]);
}

InstallerTable* tableIn(NSView* view) {
  if ([view isHidden]) return nil;
  if ([view isKindOfClass:[InstallerTable class]]) return (InstallerTable*)view;
  NSArray* const views = [view subviews];
  for (NSUInteger i = 0; i < [views count]; ++i) {
    if (InstallerTable* const found = tableIn([views objectAtIndex:i])) return found;
  }
  return nil;
}

/// With the space bar.
void tick(std::size_t row) {
  InstallerTable* const table = tableIn([mainWindow() contentView]);
  [table selectRowIndexes:[NSIndexSet indexSetWithIndex:row] byExtendingSelection:NO];
  [table keyDown:[NSEvent keyEventWithType:NSKeyDown
                                        location:NSMakePoint(0, 0)
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[mainWindow() windowNumber]
                                         context:nil
                                      characters:@" "
                     charactersIgnoringModifiers:@" "
                                       isARepeat:NO
                                         keyCode:49]];
}

void perform(const Step& step) {
  switch (step.kind) {
    case Step::Kind::print:
      if (!step.text.empty()) print(step.text);
      break;
    case Step::Kind::press: press(toObject(step.text)); break;
    case Step::Kind::tick: tick(step.row); break;
    case Step::Kind::choose: {
      NSMenu* const menu = [[[NSApp mainMenu] itemAtIndex:0] submenu];
      [menu performActionForItemAtIndex:[menu indexOfItemWithTitle:toObject(step.text)]];
      break;
    }
  }
}

}  // namespace

/// Does one step after the other, in whatever event loop is running.
@interface Walker : NSObject {
 @public
  std::vector<Step>* steps_;
  std::size_t next_;
  std::chrono::steady_clock::time_point last_;
}
- (void)tick:(id)sender;
- (void)step:(id)sender;
@end

@implementation Walker
/// The clock: a thread of its own.
- (void)tick:(id)sender {
  for (;;) {
    @autoreleasepool {
      [NSThread sleepForTimeInterval:1.0];
      const id modes[] = {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode};
      [self performSelectorOnMainThread:@selector(step:)
                             withObject:nil
                          waitUntilDone:NO
                                  modes:[NSArray arrayWithObjects:modes count:3]];
    }
  }
}
- (void)step:(id)sender {
  // Ticks that had to wait come all at once.
  const auto now = std::chrono::steady_clock::now();
  if (mainWindow() == nil || next_ == steps_->size() || now - last_ < std::chrono::milliseconds(700)) return;
  last_ = now;
  perform((*steps_)[next_++]);
  wakeEventLoop();  // the end of an alert is seen after an event
}
@end

/// WALK_VOLUME, WALK_BUNDLE and, for screenshots, WALK_PICTURES in the environment: arguments would be files to open.
int main() {
  const char* const volume = std::getenv("WALK_VOLUME");
  const char* const bundle = std::getenv("WALK_BUNDLE");
  if (volume == nullptr || bundle == nullptr) return 64;
  if (const char* const folder = std::getenv("WALK_PICTURES")) pictures = folder;
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  @autoreleasepool {
    LinuxPlatform system(
        Volume(volume, bundle), bundle, *loggedInUser(),
        [&](const WindowServices& services) {
          std::string problem;
          return makeAppKitInterface(services, volume, problem);
        },
        Surface::window);
    std::vector<Step> steps = walk();
    Walker* const walker = [[Walker alloc] init];
    walker->steps_ = &steps;
    [NSThread detachNewThreadSelector:@selector(tick:) toTarget:walker withObject:nil];
    return runWizard(system.platform()) && walker->next_ == steps.size() ? 0 : 1;
  }
}
