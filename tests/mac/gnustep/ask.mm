// SPDX-License-Identifier: Apache-2.0

// Asks GNUstep for what the declarations for Macs declare. Reads lines "CLASS - SELECTOR" and "NAME" (of a function or
// a constant) and writes those that it does not have.
#import <AppKit/AppKit.h>
#include <dlfcn.h>
#import <objc/runtime.h>

#include <iostream>
#include <sstream>
#include <string>

int main() {
  @autoreleasepool {
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream words(line);
      std::string name;
      std::string kind;
      std::string selector;
      words >> name >> kind >> selector;
      bool isThere = ::dlsym(RTLD_DEFAULT, name.c_str()) != nullptr;
      if (!selector.empty()) {
        const Class found = objc_getClass(name.c_str());
        const SEL asked = sel_registerName(selector.c_str());
        isThere = found != nil &&
                  (kind == "-" ? [found instancesRespondToSelector:asked] : [(id)found respondsToSelector:asked]);
      }
      if (!isThere) std::cout << line << '\n';
    }
  }
  return 0;
}
