// SPDX-License-Identifier: Apache-2.0

// The workspace's code with GNUstep's classes in the place of a Mac's. Applications are stand-ins: what is tested is
// what the code asks of the system, what it makes of the answers, and that it releases what it holds.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "platform/files/PosixFileSystem.h"
#include "platform/macos/MacWorkspace.h"
#include "platform/posix/SystemLog.h"
#include "platform/propertylist/BundlesOnDisk.h"
#include "platform/window/appkit/ObjectReference.h"

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
  if (!holds) {
    std::printf("does not hold: %s\n", what);
    ++failures;
  }
}

std::string launched;
int terminations = 0;
int applications = 0;
std::string opened;

}  // namespace

@interface StandIn : NSObject
@end
@implementation StandIn
- (id)init {
  ++applications;
  return [super init];
}
- (void)dealloc {
  --applications;
  [super dealloc];
}
- (NSString*)localizedName {
  return @"Größe 1";
}
- (BOOL)terminate {
  ++terminations;
  return YES;
}
@end

@implementation NSWorkspace (Missing)
- (NSRunningApplication*)launchApplicationAtURL:(NSURL*)url
                                        options:(NSWorkspaceLaunchOptions)options
                                  configuration:(NSDictionary*)configuration
                                          error:(NSError**)error {
  launched = toText([url path]) + " " + std::to_string(options);
  for (NSString* text in [configuration objectForKey:NSWorkspaceLaunchConfigurationArguments]) {
    launched += " " + toText(text);
  }
  if ([[url path] hasSuffix:@"Broken.app"]) return nil;
  return (NSRunningApplication*)[[[StandIn alloc] init] autorelease];
}
/// GNUstep's own passes news on through a server, and only property lists.
- (NSNotificationCenter*)notificationCenter {
  return [NSNotificationCenter defaultCenter];
}
- (BOOL)openURL:(NSURL*)url {
  opened = toText([url absoluteString]);
  return YES;
}
@end

namespace {

void post() {
  ObjectReference<StandIn> application([[StandIn alloc] init]);
  [[[NSWorkspace sharedWorkspace] notificationCenter]
      postNotificationName:NSWorkspaceDidTerminateApplicationNotification
                    object:nil
                  userInfo:[NSDictionary dictionaryWithObject:application.get() forKey:NSWorkspaceApplicationKey]];
}

void testNotices(MacWorkspace& workspace) {
  std::string heard;
  Workspace::Observation observation = workspace.observeTerminations([&](const std::string& name) { heard += name; });
  post();
  expect(heard == "Größe 1", "the observer hears the name");
  observation.reset();
  post();
  expect(heard == "Größe 1", "who observes no more hears nothing");

  int calls = 0;
  observation = workspace.observeTerminations([&](const std::string&) {
    observation.reset();
    ++calls;
  });
  post();
  post();
  expect(calls == 1, "the handler may end its own observation");
}

void testLaunching(MacWorkspace& workspace, const std::string& root) {
  {
    const auto application = workspace.launchHidden("/Applications/My App.app", {"-a", "Ä ö"});
    expect(application != nullptr, "the application is launched");
    const auto options = std::to_string(NSWorkspaceLaunchNewInstance | NSWorkspaceLaunchAndHide);
    expect(launched == root + "/Applications/My App.app " + options + " -a Ä ö", "as a new one, hidden");
    if (application != nullptr) application->terminate();
    expect(terminations == 1, "and is asked to end");
  }
  launched.clear();
  expect(workspace.launchHidden("/Applications/My App.app", {"\xff"}) == nullptr && launched.empty(),
         "an argument that is no text is not passed on");
  expect(workspace.launchHidden("/Applications/Broken.app", {}) == nullptr, "one that cannot be launched is none");
  expect(workspace.launchHidden("no path", {}) == nullptr, "a path has to be absolute");

  workspace.openUrl("https://example.org/a?b=c");
  expect(opened == "https://example.org/a?b=c", "the address is opened");
  opened.clear();
  workspace.openUrl("\xff");
  expect(opened.empty(), "an address that is no text is not");
}

}  // namespace

int main() {
  const auto root = std::filesystem::temp_directory_path() / "installer-gnustep-test";
  std::filesystem::create_directories(root / "Applications/My App.app");
  {
    SystemLog log;
    const Volume volume(root, "/no/bundle");
    const PosixUser user(*loggedInUser(), {"en"});
    const PosixFileSystem files(volume, user, [](const std::string& /*path*/) { return false; });
    const BundlesOnDisk bundles("/no/bundle", files, user, log);
    MacWorkspace workspace(volume, files, bundles);
    static_cast<void>(workspace.launchedApplications());
    @autoreleasepool {
      testNotices(workspace);
      testLaunching(workspace, root);
    }
  }
  std::filesystem::remove_all(root);
  expect(applications == 0, "every application is released");
  std::printf("%d failures\n", failures);
  return failures == 0 ? 0 : 1;
}
