// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitRunLoop.h"

#import <AppKit/AppKit.h>

#include <chrono>
#include <utility>

#include "platform/window/appkit/ObjectReference.h"

/// Calls its handler whenever there is something to read, also while a panel waits for an answer.
@interface InstallerReadable : NSObject {
 @public
  const std::function<void()>* handler_;
  NSFileHandle* file_;
}
- (void)wait;
- (void)isReadable:(NSNotification*)notification;
@end

@implementation InstallerReadable
- (void)wait {
  const id modes[] = {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode};
  [file_ waitForDataInBackgroundAndNotifyForModes:[NSArray arrayWithObjects:modes count:3]];
}
- (void)isReadable:(NSNotification*)notification {
  if (handler_ == nullptr) return;
  [[self retain] autorelease];  // the handler may end the watch
  const std::function<void()> handler = *handler_;
  handler();
  wakeEventLoop();
  if (handler_ != nullptr) [self wait];
}
@end

namespace {

class Watched {
 public:
  Watched(int descriptor, std::function<void()> handler)
      : handler_(std::move(handler)),
        file_([[NSFileHandle alloc] initWithFileDescriptor:descriptor closeOnDealloc:NO]),
        readable_([[InstallerReadable alloc] init]) {
    readable_.get()->handler_ = &handler_;
    readable_.get()->file_ = file_.get();
    [[NSNotificationCenter defaultCenter] addObserver:readable_.get()
                                             selector:@selector(isReadable:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:file_.get()];
    [readable_.get() wait];
  }
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;
  ~Watched() {
    readable_.get()->handler_ = nullptr;
    readable_.get()->file_ = nil;
    [[NSNotificationCenter defaultCenter] removeObserver:readable_.get()];
  }

 private:
  std::function<void()> handler_;
  ObjectReference<NSFileHandle> file_;
  ObjectReference<InstallerReadable> readable_;
};

NSDate* dateOf(RunLoop::Clock::time_point limit) {
  if (limit == RunLoop::distantFuture) return [NSDate distantFuture];
  const std::chrono::duration<double> left = limit - RunLoop::Clock::now();
  return left.count() <= 0 ? [NSDate distantPast] : [NSDate dateWithTimeIntervalSinceNow:left.count()];
}

/// Handles one event. False when there was none before the date.
bool handleEvent(NSDate* limit) {
  @autoreleasepool {
    NSEvent* const event = [NSApp nextEventMatchingMask:NSUIntegerMax
                                              untilDate:limit
                                                 inMode:NSDefaultRunLoopMode
                                                dequeue:YES];
    if (event != nil) [NSApp sendEvent:event];
    return event != nil;
  }
}

}  // namespace

DescriptorRunLoop::Watch AppKitRunLoop::watchReadable(int descriptor, std::function<void()> handler) {
  @autoreleasepool {
    return std::make_shared<Watched>(descriptor, std::move(handler));
  }
}

bool AppKitRunLoop::runBeforeDate(Clock::time_point limit) {
  @autoreleasepool {
    handleEvent(dateOf(limit));
    [NSApp updateWindows];
  }
  return true;
}

void AppKitRunLoop::runUntilDate(Clock::time_point limit) {
  @autoreleasepool {
    // Everything that has happened, then what happens until the date.
    while (handleEvent([NSDate distantPast]) || Clock::now() < limit) {
      if (Clock::now() < limit) handleEvent(dateOf(limit));
    }
    NSArray* const windows = [NSApp windows];
    for (NSUInteger i = 0; i < [windows count]; ++i) [[windows objectAtIndex:i] displayIfNeeded];
  }
}

void wakeEventLoop() {
  NSEvent* const event = [NSEvent otherEventWithType:NSApplicationDefined
                                            location:NSMakePoint(0, 0)
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                             subtype:0
                                               data1:0
                                               data2:0];
  [NSApp postEvent:event atStart:NO];
}
