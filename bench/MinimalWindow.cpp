// SPDX-License-Identifier: Apache-2.0

// The least that a program with such a window can be: a text browser and a few labels, from a description that is
// loaded at run time. Tells when it painted first, and ends.
//
//   minimal-window DESCRIPTION

#include <QApplication>
#include <QFile>
#include <QTimer>
#include <QUiLoader>
#include <QWidget>
#include <memory>

#include "Painting.h"

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  Painting painting;
  painting.onFirst = [] { QTimer::singleShot(0, qApp, &QApplication::quit); };
  QFile description(argc > 1 ? argv[1] : "");
  if (!description.open(QIODevice::ReadOnly)) return 66;
  QUiLoader loader;
  const std::unique_ptr<QWidget> window(loader.load(&description));
  if (window == nullptr) return 65;
  window->show();
  const int status = QApplication::exec();
  report("first-paint", milliseconds(painting.last().time_since_epoch()));
  return status;
}
