// SPDX-License-Identifier: Apache-2.0

#include <utility>

#include "platform/window/appkit/AppKitControls.h"

namespace {

/// The text that a key would put in; nil when it is a command.
NSString* typedText(NSEvent* event) {
  const NSUInteger commands = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask;
  NSString* const text = [event characters];
  if (([event modifierFlags] & commands) != 0 || [text length] == 0) return nil;
  const unichar first = [text characterAtIndex:0];
  const bool isFunctionKey = first >= 0xF700 && first <= 0xF8FF;
  const bool isControl = (first < ' ' && first != '\r' && first != 0x03) || first == 0x7F;
  return isFunctionKey || isControl ? nil : text;
}

}  // namespace

@implementation InstallerTextView
- (void)dealloc {
  delete typed_;
  [super dealloc];
}
- (void)setTyped:(std::function<void(const std::string&)>)typed {
  delete std::exchange(typed_, new std::function<void(const std::string&)>(std::move(typed)));
}
- (void)keyDown:(NSEvent*)event {
  NSString* const text = typedText(event);
  const unichar first = text != nil ? [text characterAtIndex:0] : 0;
  const bool isReturn = first == '\r' || first == 0x03;
  if (text != nil && typed_ != nullptr) {
    [[self retain] autorelease];  // the owner may end the window
    const std::function<void(const std::string&)> typed = *typed_;
    typed(isReturn ? "\n" : toText(text));
  }
  if (!isReturn) [super keyDown:event];
}
// The tabulator key leads to the next control.
- (void)insertTab:(id)sender {
  [[self window] selectNextKeyView:sender];
}
- (void)insertBacktab:(id)sender {
  [[self window] selectPreviousKeyView:sender];
}
@end
