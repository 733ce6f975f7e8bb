// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/DockProgress.h"

#import <AppKit/AppKit.h>

#include <algorithm>

#include "platform/window/appkit/ObjectReference.h"

namespace {

constexpr double barHeight = 0.12;  // of the icon's

/// The icon with a bar over its lower edge.
NSImageView* makeTile(NSSize size, NSProgressIndicator* bar) {
  NSImageView* const icon = [[[NSImageView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)] autorelease];
  [icon setImage:[NSApp applicationIconImage]];
  [bar setFrame:NSMakeRect(size.width * 0.06, 0, size.width * 0.88, size.height * barHeight)];
  [bar setIndeterminate:NO];
  [bar setMinValue:0];
  [bar setMaxValue:1];
  [icon addSubview:bar];
  return icon;
}

}  // namespace

void showProgressInDock(std::optional<double> done) {
  static NSProgressIndicator* bar = nil;
  NSDockTile* const tile = [NSApp dockTile];
  if (tile == nil) return;
  if (!done || *done <= 0 || *done >= 1) {
    if (bar == nil) return;
    [tile setContentView:nil];
    [bar release];
    bar = nil;
  } else {
    if (bar == nil) {
      bar = [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, 1, 1)];
      [tile setContentView:makeTile([tile size], bar)];
    }
    [bar setDoubleValue:*done];
  }
  [tile display];
}
