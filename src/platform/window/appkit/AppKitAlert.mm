// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitAlert.h"

#include "platform/window/appkit/AppKitPicture.h"

/// Keeps the answer to a sheet, and ends the wait for it.
@interface InstallerSheetEnd : NSObject {
 @public
  NSInteger answer_;
}
- (void)alertDidEnd:(NSAlert*)alert returnCode:(NSInteger)code contextInfo:(void*)context;
@end

@implementation InstallerSheetEnd
- (void)alertDidEnd:(NSAlert*)alert returnCode:(NSInteger)code contextInfo:(void*)context {
  answer_ = code;
  [NSApp stopModal];
}
@end

AlertAnswer askAlert(const Alert& alert, NSWindow* window, const Picture& picture) {
  @autoreleasepool {
    ObjectReference<NSAlert> shown([[NSAlert alloc] init]);
    NSAlert* const panel = shown.get();
    [panel setMessageText:toObject(alert.title)];
    [panel setInformativeText:toObject(alert.message)];
    [panel setAlertStyle:alert.style == Alert::Style::warning ? NSWarningAlertStyle : NSInformationalAlertStyle];
    if (NSImage* const image = imageOf(picture)) [panel setIcon:image];
    [panel addButtonWithTitle:toObject(alert.defaultButton)];
    if (alert.alternateButton) [[panel addButtonWithTitle:toObject(*alert.alternateButton)] setKeyEquivalent:@"\033"];
    ObjectReference<InstallerSheetEnd> end([[InstallerSheetEnd alloc] init]);
    NSInteger& answer = end.get()->answer_;
    if (window != nil && [window attachedSheet] == nil) {
      [panel beginSheetModalForWindow:window
                        modalDelegate:end.get()
                       didEndSelector:@selector(alertDidEnd:returnCode:contextInfo:)
                          contextInfo:nullptr];
      // Some systems come back from that at once, others with the answer.
      if (answer == 0) [NSApp runModalForWindow:[panel window]];
    } else {
      answer = [panel runModal];
    }
    return answer == NSAlertFirstButtonReturn ? AlertAnswer::defaultButton : AlertAnswer::alternateButton;
  }
}
