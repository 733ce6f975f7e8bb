// SPDX-License-Identifier: Apache-2.0

// What GNUstep's headers lack of what the installer uses.
#pragma once

#ifdef __OBJC__
#import <AppKit/AppKit.h>

static NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";
static NSString* const NSWorkspaceLaunchConfigurationArguments = @"NSWorkspaceLaunchConfigurationArguments";

@interface NSWorkspace (Missing)
- (NSRunningApplication*)launchApplicationAtURL:(NSURL*)url
                                        options:(NSWorkspaceLaunchOptions)options
                                  configuration:(NSDictionary*)configuration
                                          error:(NSError**)error;
@end

@interface NSApplication (Missing)
- (NSDockTile*)dockTile;
- (BOOL)setActivationPolicy:(NSInteger)policy;
@end

@interface NSView (Missing)
- (NSString*)accessibilityLabel;
- (void)setAccessibilityLabel:(NSString*)text;
- (void)setAccessibilityValueDescription:(NSString*)text;
@end
#endif
