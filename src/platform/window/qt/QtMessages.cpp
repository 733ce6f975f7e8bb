// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtMessages.h"

#include <dlfcn.h>
#include <unistd.h>

#include <QtGlobal>
#include <cstdarg>
#include <iostream>
#include <set>
#include <string>

#include "foundation/Text.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int statusUnavailable = 69;  // of sysexits.h

// Qt takes a function without data.
Log* receiver = nullptr;
std::set<std::string>* said = nullptr;

/// What says nothing about this program: a session without a runtime folder is a usual one.
bool isNoise(const QString& message) {
  return message.startsWith("QStandardPaths: ") || message.startsWith("This plugin does not support");
}

void receive(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type == QtFatalMsg) {
    std::cerr << "Installer: no window: " << onOneLine(fromQt(message.section('\n', 0, 0)))
              << "; -quiet installs without one\n"
              << std::flush;
    ::_exit(statusUnavailable);
  }
  if (type == QtDebugMsg || type == QtInfoMsg || receiver == nullptr || isNoise(message)) return;
  std::string line = "Window: " + fromQt(message);
  if (said->insert(line).second) receiver->write(line);
}

}  // namespace

QtMessages::QtMessages(Log& log) {
  receiver = &log;
  said = new std::set<std::string>;
  qInstallMessageHandler(receive);
}

QtMessages::~QtMessages() {
  qInstallMessageHandler(nullptr);
  receiver = nullptr;
  delete said;
  said = nullptr;
}

void silenceTiff() {
  void* const library = ::dlopen("libtiff.so.6", RTLD_LAZY | RTLD_LOCAL);
  if (library == nullptr) return;
  using Handler = void (*)(const char*, const char*, va_list);
  for (const char* const setter : {"TIFFSetErrorHandler", "TIFFSetWarningHandler"}) {
    if (auto* const set = reinterpret_cast<Handler (*)(Handler)>(::dlsym(library, setter))) set(nullptr);
  }
}
