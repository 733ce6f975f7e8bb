// SPDX-License-Identifier: Apache-2.0

#include "WindowDriver.h"

#include <dlfcn.h>

#include <QTimer>
#include <string>

#include "platform/window/WindowModule.h"

namespace {

constexpr int longestRun = 120'000;

/// Of the installer's own module, which lies beside this one. It is told from any other by its path alone.
MakeWindowInterface* realEntry() {
  Dl_info own{};
  if (::dladdr(reinterpret_cast<void*>(&realEntry), &own) == 0) return nullptr;
  const std::string path(own.dli_fname);
  const std::string real = path.substr(0, path.rfind('/')) + "/RealWindow.so";
  void* const module = ::dlopen(real.c_str(), RTLD_NOW | RTLD_LOCAL);
  return module == nullptr ? nullptr : reinterpret_cast<MakeWindowInterface*>(::dlsym(module, windowModuleEntry));
}

}  // namespace

extern "C" [[gnu::visibility("default")]] UserInterface* makeWindowInterface(const WindowServices& services,
                                                                             std::string& problem) {
  MakeWindowInterface* const make = realEntry();
  if (make == nullptr) {
    problem = "there is no RealWindow.so beside the driver";
    return nullptr;
  }
  UserInterface* const made = make(services, problem);
  if (made == nullptr) return nullptr;
  QTimer::singleShot(longestRun, qApp, [] { giveUp("the end"); });  // somebody asks what nobody answers, say
  startDriving();
  return made;
}
