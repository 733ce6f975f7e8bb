#include "WindowDriver.h"

#include <dlfcn.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QTimer>
#include <iostream>
#include <string>

#include "platform/posix/WindowModule.h"

namespace {

constexpr int longestWait = 20'000;
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

[[noreturn]] void giveUp(const char* waitedFor) {
  std::cerr << "driver: gave up waiting for " << waitedFor << '\n';
  ::_exit(70);
}

void pressWhenShown(const std::string& button, const std::function<void()>& before, const QElapsedTimer& since) {
  auto* const shown = shownWidget<QAbstractButton>(button.c_str());
  if (shown != nullptr && shown->isEnabled()) {
    before();
    shown->click();
    return;
  }
  if (since.hasExpired(longestWait)) giveUp(button.c_str());
  QTimer::singleShot(1, qApp, [=] { pressWhenShown(button, before, since); });
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

void waitUntil(const char* condition, const std::function<bool()>& holds) {
  QElapsedTimer since;
  since.start();
  while (!holds()) {
    if (since.hasExpired(longestWait)) giveUp(condition);
    QApplication::processEvents(QEventLoop::AllEvents, 10);
    ::usleep(500);
  }
}

void pressLater(const char* button, const std::function<void()>& before) {
  QElapsedTimer since;
  since.start();
  QTimer::singleShot(0, qApp, [=, name = std::string(button)] { pressWhenShown(name, before, since); });
}

void agreeToLicence(const std::function<void()>& beforeAgreeing) {
  waitUntil("the licence page", [] { return shownWidget<QWidget>("licenseView") != nullptr; });
  pressLater("defaultButton", beforeAgreeing);
  shownWidget<QAbstractButton>("forwardButton")->click();
}
