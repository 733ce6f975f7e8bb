// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QCoreApplication>
#include <QStringList>

/// While this lives, Qt finds no plug-ins that it has not found before. Some of its classes load every plug-in of their
/// kind to look for a better way to do what they can do themselves, and that takes longer than all else before the
/// first window.
class NoPlugins {
 public:
  NoPlugins() { QCoreApplication::setLibraryPaths({}); }
  ~NoPlugins() { QCoreApplication::setLibraryPaths(paths_); }
  NoPlugins(const NoPlugins&) = delete;
  NoPlugins& operator=(const NoPlugins&) = delete;

 private:
  QStringList paths_ = QCoreApplication::libraryPaths();
};
