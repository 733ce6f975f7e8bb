// SPDX-License-Identifier: Apache-2.0

// What GNUstep lacks of what the window calls. Names for a screen reader are kept, so that a test can ask for them with
// accessibilityLabel.
#import <AppKit/AppKit.h>

#include <map>
#include <string>

namespace {
std::map<const void*, std::string> names;
}

@implementation NSView (StandIns)
- (void)setAccessibilityLabel:(NSString*)text {
  names[self] = [text UTF8String];
}
- (NSString*)accessibilityLabel {
  return [NSString stringWithUTF8String:names[self].c_str()];
}
- (void)setAccessibilityValueDescription:(NSString*)text {
  names[self] = [text UTF8String];
}
@end

@implementation NSApplication (StandIns)
- (NSDockTile*)dockTile {
  return nil;
}
- (BOOL)setActivationPolicy:(NSInteger)policy {
  return policy == 0;
}
@end
