// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitUserInterface.h"

#include "platform/window/appkit/AppKitRunLoop.h"
#include "platform/window/appkit/AppKitToolkit.h"

namespace {

class AppKitUserInterface : public UserInterface {
 public:
  AppKitUserInterface(const WindowServices& services, const std::string& volumeRoot) : toolkit_(services, volumeRoot) {}

  [[nodiscard]] DescriptorRunLoop& runLoop() override { return runLoop_; }
  [[nodiscard]] Toolkit& toolkit() override { return toolkit_; }

 private:
  AppKitRunLoop runLoop_;
  AppKitToolkit toolkit_;
};

}  // namespace

std::unique_ptr<UserInterface> makeAppKitInterface(const WindowServices& services, const std::string& volumeRoot,
                                                   std::string& problem) {
  @autoreleasepool {
    if ([NSApplication sharedApplication] == nil) {
      problem = "the window server cannot be reached";
      return nullptr;
    }
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
    return std::make_unique<AppKitUserInterface>(services, volumeRoot);
  }
}
