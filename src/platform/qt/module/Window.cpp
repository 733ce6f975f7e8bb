#include <string>

#include "platform/posix/WindowModule.h"
#include "platform/qt/QtUserInterface.h"

extern "C" [[gnu::visibility("default")]] UserInterface* makeWindowInterface(const WindowServices& services,
                                                                             std::string& problem) {
  return QtUserInterface::make(services, problem).release();
}
