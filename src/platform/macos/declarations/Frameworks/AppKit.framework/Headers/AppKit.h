// SPDX-License-Identifier: Apache-2.0

// What the program calls of AppKit, for a build without the system's development kit.
#pragma once

#include <Foundation/Foundation.h>

extern "C" NSString* const NSWorkspaceApplicationKey;
extern "C" NSString* const NSWorkspaceDidLaunchApplicationNotification;
extern "C" NSString* const NSWorkspaceDidTerminateApplicationNotification;
extern "C" NSString* const NSWorkspaceLaunchConfigurationArguments;

typedef NSUInteger NSWorkspaceLaunchOptions;
enum { NSWorkspaceLaunchNewInstance = 0x00080000, NSWorkspaceLaunchAndHide = 0x00100000 };

typedef NSInteger NSApplicationActivationPolicy;
enum { NSApplicationActivationPolicyRegular = 0 };

@interface NSRunningApplication : NSObject
- (NSString*)localizedName;
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)terminate;
@end

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (NSNotificationCenter*)notificationCenter;
- (NSArray*)runningApplications;
- (NSRunningApplication*)launchApplicationAtURL:(NSURL*)url
                                        options:(NSWorkspaceLaunchOptions)options
                                  configuration:(NSDictionary*)configuration
                                          error:(NSError**)error;
- (BOOL)openURL:(NSURL*)url;
@end

#include <AppKit/Windows.h>
