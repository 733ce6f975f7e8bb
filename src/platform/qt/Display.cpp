#include "platform/qt/Display.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QLibraryInfo>
#include <QtGlobal>
#include <memory>
#include <string_view>

#include "platform/posix/FileDescriptor.h"

namespace {

/// Connects as Qt is going to, with the person's authority for the display.
bool hasXDisplay() {
  const std::unique_ptr<void, int (*)(void*)> library(::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL),
                                                      [](void* handle) { return ::dlclose(handle); });
  if (library == nullptr || qEnvironmentVariableIsEmpty("DISPLAY")) return false;
  struct Connection;
  auto* const connect = reinterpret_cast<Connection* (*)(const char*, int*)>(::dlsym(library.get(), "xcb_connect"));
  auto* const hasError = reinterpret_cast<int (*)(Connection*)>(::dlsym(library.get(), "xcb_connection_has_error"));
  auto* const disconnect = reinterpret_cast<void (*)(Connection*)>(::dlsym(library.get(), "xcb_disconnect"));
  if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return false;
  Connection* const connection = connect(nullptr, nullptr);
  const bool isConnected = hasError(connection) == 0;
  disconnect(connection);
  return isConnected;
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

std::string problemWithDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  // A platform that was asked for by name and needs no display, or one that only Qt can judge.
  if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland")) return {};
  if (!platform.startsWith("wayland") && hasXDisplay()) return {};
  if (!platform.startsWith("xcb") && hasWaylandDisplay()) {
    if (platform.isEmpty()) qputenv("QT_QPA_PLATFORM", "wayland");
    return {};
  }
  const bool isNamed = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
  return isNamed ? "the display cannot be reached" : "there is no display";
}
