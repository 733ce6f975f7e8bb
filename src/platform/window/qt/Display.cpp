// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/Display.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QLibraryInfo>
#include <QtGlobal>
#include <memory>
#include <utility>

#include "platform/posix/FileDescriptor.h"

namespace {

/// Connects as Qt is going to, with the person's authority for the display; null when that fails.
std::shared_ptr<void> connectToX() {
  if (qEnvironmentVariableIsEmpty("DISPLAY")) return nullptr;
  void* const library = ::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);  // stays, Qt needs it, too
  if (library == nullptr) return nullptr;
  struct Connection;
  auto* const connect = reinterpret_cast<Connection* (*)(const char*, int*)>(::dlsym(library, "xcb_connect"));
  auto* const hasError = reinterpret_cast<int (*)(Connection*)>(::dlsym(library, "xcb_connection_has_error"));
  auto* const disconnect = reinterpret_cast<void (*)(Connection*)>(::dlsym(library, "xcb_disconnect"));
  if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return nullptr;
  std::shared_ptr<Connection> connection(connect(nullptr, nullptr), disconnect);
  if (hasError(connection.get()) != 0) return nullptr;
  return connection;
}

bool hasWaylandDisplay() {
  const QString name = qEnvironmentVariable("WAYLAND_DISPLAY");
  const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
  if (name.isEmpty() || plugins.entryList({"libqwayland*.so"}).isEmpty()) return false;
  const QByteArray path = QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).filePath(name).toLocal8Bit();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
  path.toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

FoundDisplay findDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  // A platform that was asked for by name and needs no display, or one that only Qt can judge.
  if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland")) return {};
  if (!platform.startsWith("wayland")) {
    if (auto connection = connectToX()) return {.problem = {}, .connection = std::move(connection)};
  }
  if (!platform.startsWith("xcb") && hasWaylandDisplay()) {
    if (platform.isEmpty()) qputenv("QT_QPA_PLATFORM", "wayland");
    return {};
  }
  const bool isNamed = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
  return {.problem = isNamed ? "the display cannot be reached" : "there is no display", .connection = nullptr};
}
