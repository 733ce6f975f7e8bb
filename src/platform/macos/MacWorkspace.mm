// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/propertylist/BundleOnDisk.h"
#include "platform/window/appkit/ObjectReference.h"

/// Passes the workspace's news on, for as long as it is the observer.
@interface InstallerApplicationObserver : NSObject {
 @public
  const Workspace::TerminationHandler* handler_;
}
- (void)applicationChanged:(NSNotification*)notification;
@end

@implementation InstallerApplicationObserver
- (void)applicationChanged:(NSNotification*)notification {
  NSRunningApplication* const application = [[notification userInfo] objectForKey:NSWorkspaceApplicationKey];
  // A copy: the handler may end the observation.
  const Workspace::TerminationHandler handler = *handler_;
  handler(toText([application localizedName]));
}
@end

namespace {

NSNotificationCenter* centre() { return [[NSWorkspace sharedWorkspace] notificationCenter]; }

class ApplicationObservation {
 public:
  ApplicationObservation(NSString* notification, Workspace::TerminationHandler handler)
      : handler_(std::move(handler)), observer_([[InstallerApplicationObserver alloc] init]) {
    observer_.get()->handler_ = &handler_;
    [centre() addObserver:observer_.get() selector:@selector(applicationChanged:) name:notification object:nil];
  }
  ApplicationObservation(const ApplicationObservation&) = delete;
  ApplicationObservation& operator=(const ApplicationObservation&) = delete;
  ~ApplicationObservation() { [centre() removeObserver:observer_.get()]; }

 private:
  Workspace::TerminationHandler handler_;
  ObjectReference<InstallerApplicationObserver> observer_;
};

class LaunchedApplication : public RunningApplication {
 public:
  explicit LaunchedApplication(NSRunningApplication* application) : application_([application retain]) {}

  void terminate() override {
    @autoreleasepool {
      [application_.get() terminate];
    }
  }

 private:
  ObjectReference<NSRunningApplication> application_;
};

}  // namespace

std::vector<std::string> MacWorkspace::launchedApplications() const {
  std::vector<std::string> names;
  @autoreleasepool {
    NSArray* const running = [[NSWorkspace sharedWorkspace] runningApplications];
    for (NSUInteger i = 0; i < [running count]; ++i) {
      NSRunningApplication* const application = [running objectAtIndex:i];
      // The others have neither a window nor a place in the Dock, and nobody could be asked to quit them.
      if ([application activationPolicy] != NSApplicationActivationPolicyRegular) continue;
      names.push_back(toText([application localizedName]));
    }
  }
  return names;
}

Workspace::Observation MacWorkspace::observeTerminations(TerminationHandler handler) {
  @autoreleasepool {
    return std::make_shared<ApplicationObservation>(NSWorkspaceDidTerminateApplicationNotification, std::move(handler));
  }
}

Workspace::Observation MacWorkspace::observeLaunches(LaunchHandler handler) {
  @autoreleasepool {
    return std::make_shared<ApplicationObservation>(NSWorkspaceDidLaunchApplicationNotification, std::move(handler));
  }
}

std::unique_ptr<RunningApplication> MacWorkspace::launchHidden(const std::string& path,
                                                               const std::vector<std::string>& arguments) {
  const auto place = volume_.realPath(path, Volume::LastLink::follow, Volume::Purpose::look);
  if (!place) return nullptr;
  @autoreleasepool {
    std::vector<id> texts;
    for (const std::string& argument : arguments) {
      if (NSString* const text = toObject(argument)) texts.push_back(text);
    }
    NSString* const location = toObject(*place);
    if (location == nil || texts.size() != arguments.size()) return nullptr;
    NSArray* const given = [NSArray arrayWithObjects:texts.data() count:texts.size()];
    NSRunningApplication* const application = [[NSWorkspace sharedWorkspace]
        launchApplicationAtURL:[NSURL fileURLWithPath:location isDirectory:YES]
                       options:NSWorkspaceLaunchNewInstance | NSWorkspaceLaunchAndHide
                 configuration:[NSDictionary dictionaryWithObject:given forKey:NSWorkspaceLaunchConfigurationArguments]
                         error:nullptr];
    if (application == nil) return nullptr;
    return std::make_unique<LaunchedApplication>(application);
  }
}

void MacWorkspace::openUrl(const std::string& url) {
  @autoreleasepool {
    NSString* const text = toObject(url);
    NSURL* const address = text != nil ? [NSURL URLWithString:text] : nil;
    if (address != nil) [[NSWorkspace sharedWorkspace] openURL:address];
  }
}

void MacWorkspace::openItem(const std::string& path) {
  const auto place = volume_.realPath(path, Volume::LastLink::follow, Volume::Purpose::look);
  if (!place) return;
  @autoreleasepool {
    NSString* const location = toObject(*place);
    if (location == nil) return;
    [[NSWorkspace sharedWorkspace] openURL:[NSURL fileURLWithPath:location isDirectory:NO]];
  }
}

std::string MacWorkspace::iconFile(const std::string& path) const { return iconFileOf(path, bundles_, files_); }
