// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <memory>
#include <set>

#include "platform/Toolkit.h"
#include "platform/window/appkit/ObjectReference.h"

class AppKitWindows;

/// Asks before a window is closed, or the application ended, and tells afterwards.
@interface InstallerWindowDelegate : NSObject {
 @public
  AppKitWindows* windows_;
}
- (BOOL)windowShouldClose:(id)window;
- (void)windowWillClose:(NSNotification*)notification;
- (NSUInteger)applicationShouldTerminate:(NSApplication*)application;
@end

/// The application's windows, and its life: it ends when the last of them has closed and its delegate says so.
class AppKitWindows {
 public:
  AppKitWindows();
  ~AppKitWindows();
  AppKitWindows(const AppKitWindows&) = delete;
  AppKitWindows& operator=(const AppKitWindows&) = delete;

  void setDelegate(ApplicationDelegate* delegate) { delegate_ = delegate; }
  [[nodiscard]] std::shared_ptr<Window> windowOf(NSWindow* window);

  /// Handles events until the application ends; at once when it has ended, or when there is no window to do anything
  /// in.
  void run();

  /// The window that is in front; nil when none is shown.
  [[nodiscard]] NSWindow* frontWindow() const;
  /// Closes every window as the person would, unless the delegate has something against it.
  void closeAll();

  // For Window and for the delegate of windows.
  void show(NSWindow* window);
  void closeWithoutAsking(NSWindow* window);
  [[nodiscard]] bool mayClose() const;
  void closed(NSWindow* window);

 private:
  ObjectReference<InstallerWindowDelegate> windowDelegate_;
  std::set<NSWindow*> shown_;  ///< whoever made a window holds it
  ApplicationDelegate* delegate_ = nullptr;
  bool hasEnded_ = false;
};
