// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitWindows.h"

#include <utility>

#include "platform/window/appkit/AppKitRunLoop.h"

@implementation InstallerWindowDelegate
- (BOOL)windowShouldClose:(id)window {
  return windows_ == nullptr || windows_->mayClose();
}
- (void)windowWillClose:(NSNotification*)notification {
  if (windows_ != nullptr) windows_->closed([notification object]);
}
- (void)stopApplication {
  [NSApp stop:nil];
  wakeEventLoop();  // the loop ends after an event
}
- (NSUInteger)applicationShouldTerminate:(NSApplication*)application {
  // The program ends by itself once its windows are closed, and leaves nothing half done.
  if (windows_ != nullptr) windows_->closeAll();
  return NSTerminateCancel;
}
@end

namespace {

class AppKitWindow : public Window {
 public:
  AppKitWindow(NSWindow* window, AppKitWindows& windows) : window_([window retain]), windows_(windows) {}

  void centre() override {
    [window_.get() center];
    windows_.show(window_.get());
  }
  void close() override { windows_.closeWithoutAsking(window_.get()); }

 private:
  ObjectReference<NSWindow> window_;
  AppKitWindows& windows_;
};

}  // namespace

AppKitWindows::AppKitWindows() : windowDelegate_([[InstallerWindowDelegate alloc] init]) {
  windowDelegate_.get()->windows_ = this;
  [NSApp setDelegate:(id)windowDelegate_.get()];
}

AppKitWindows::~AppKitWindows() {
  windowDelegate_.get()->windows_ = nullptr;
  [NSApp setDelegate:nil];
  for (NSWindow* const window : shown_) [window setDelegate:nil];
}

std::shared_ptr<Window> AppKitWindows::windowOf(NSWindow* window) {
  return std::make_shared<AppKitWindow>(window, *this);
}

void AppKitWindows::show(NSWindow* window) {
  shown_.insert(window);
  [window setDelegate:(id)windowDelegate_.get()];
  [window makeKeyAndOrderFront:nil];
  [NSApp activateIgnoringOtherApps:YES];
}

void AppKitWindows::closeWithoutAsking(NSWindow* window) {
  // What is asked in the window has nobody to answer it any more.
  if ([window attachedSheet] != nil) [NSApp stopModal];
  [window close];
}

void AppKitWindows::closeAll() {
  if (!mayClose()) return;
  for (NSWindow* const window : std::set(shown_)) closeWithoutAsking(window);
}

bool AppKitWindows::mayClose() const { return delegate_ == nullptr || delegate_->windowShouldClose(); }

NSWindow* AppKitWindows::frontWindow() const {
  NSWindow* const key = [NSApp keyWindow];
  if (key != nil && shown_.contains(key)) return key;
  return shown_.empty() ? nil : *shown_.begin();
}

void AppKitWindows::run() {
  if (!hasEnded_ && !shown_.empty()) [NSApp run];
}

void AppKitWindows::closed(NSWindow* window) {
  if (shown_.erase(window) == 0 || !shown_.empty()) return;
  if (delegate_ != nullptr && !delegate_->applicationShouldTerminateAfterLastWindowClosed()) return;
  hasEnded_ = true;
  // While a panel is up, only its loop would end: this comes after it.
  [windowDelegate_.get() performSelector:@selector(stopApplication) withObject:nil afterDelay:0];
}
