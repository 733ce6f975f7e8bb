// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitOpenPanel.h"

#include "foundation/Path.h"
#include "platform/window/appkit/ObjectReference.h"

/// Says what the panel shows, and ends the wait for its sheet.
@interface InstallerPanelDelegate : NSObject {
 @public
  const OpenPanel* panel_;
  const std::string* root_;
}
- (BOOL)panel:(id)sender shouldEnableURL:(NSURL*)url;
- (BOOL)panel:(id)sender shouldShowFilename:(NSString*)path;
- (void)panelDidEnd:(NSOpenPanel*)panel returnCode:(NSInteger)code contextInfo:(void*)context;
@end

namespace {

/// The path on the volume; nothing for one that is not on it.
std::optional<std::string> onVolume(const std::string& path, const std::string& root) {
  if (root == "/") return path;
  if (path == root) return "/";
  if (!path.starts_with(root + "/")) return std::nullopt;
  return path.substr(root.size());
}

NSInteger askInSheet(NSOpenPanel* panel, NSWindow* window, NSString* folder, InstallerPanelDelegate* delegate) {
  const SEL begin = @selector(beginSheetForDirectory:
                                                file:types:modalForWindow:modalDelegate:didEndSelector:contextInfo:);
  if (window == nil || [window attachedSheet] != nil || ![panel respondsToSelector:begin]) return [panel runModal];
  [panel beginSheetForDirectory:folder
                           file:nil
                          types:nil
                 modalForWindow:window
                  modalDelegate:delegate
                 didEndSelector:@selector(panelDidEnd:returnCode:contextInfo:)
                    contextInfo:nullptr];
  return [NSApp runModalForWindow:window];
}

}  // namespace

@implementation InstallerPanelDelegate
- (BOOL)panel:(id)sender shouldEnableURL:(NSURL*)url {
  return [self panel:sender shouldShowFilename:[url path]];
}
- (BOOL)panel:(id)sender shouldShowFilename:(NSString*)path {
  const auto logical = onVolume(toText(path), *root_);
  return logical && (panel_->shouldShowFilename == nullptr || panel_->shouldShowFilename(*logical));
}
- (void)panelDidEnd:(NSOpenPanel*)panel returnCode:(NSInteger)code contextInfo:(void*)context {
  [NSApp stopModalWithCode:code];
}
@end

std::optional<std::string> askForFolder(const OpenPanel& panel, const std::string& volumeRoot, NSWindow* window) {
  @autoreleasepool {
    NSOpenPanel* const shown = [NSOpenPanel openPanel];
    [shown setTitle:toObject(panel.title)];
    [shown setMessage:toObject(panel.message)];
    [shown setPrompt:toObject(panel.prompt)];
    [shown setCanChooseDirectories:YES];
    [shown setCanChooseFiles:NO];
    [shown setCanCreateDirectories:YES];
    [shown setAllowsMultipleSelection:NO];
    [shown setTreatsFilePackagesAsDirectories:NO];
    NSString* const folder = toObject(joinPath(volumeRoot, panel.startFolder));
    [shown setDirectoryURL:[NSURL fileURLWithPath:folder isDirectory:YES]];
    ObjectReference<InstallerPanelDelegate> delegate([[InstallerPanelDelegate alloc] init]);
    delegate.get()->panel_ = &panel;
    delegate.get()->root_ = &volumeRoot;
    [shown setDelegate:(id)delegate.get()];
    const NSInteger answer = askInSheet(shown, window, folder, delegate.get());
    [shown setDelegate:nil];
    [shown orderOut:nil];
    constexpr NSInteger confirmed = 1;
    NSArray* const chosen = [shown URLs];
    if (answer != confirmed || [chosen count] == 0) return std::nullopt;
    return onVolume(toText([[chosen objectAtIndex:0] path]), volumeRoot);
  }
}
