// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtUserInterface.h"

#include <QFont>

#include "foundation/Value.h"
#include "platform/window/qt/Display.h"
#include "platform/window/qt/QtAccessible.h"
#include "platform/window/qt/QtPalette.h"
#include "platform/window/qt/QtStyle.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int textSize = 13;

}  // namespace

std::unique_ptr<QtUserInterface> QtUserInterface::make(const WindowServices& services, std::string& problem) {
  const FoundDisplay display = findDisplay();
  problem = display.problem;
  if (!problem.empty()) return nullptr;
  qputenv("QT_NO_GLIB", "1");  // Qt's own event loop does: it turns faster, and the install turns it for every file
  return std::unique_ptr<QtUserInterface>(new QtUserInterface(services));
}

QtUserInterface::QtUserInterface(const WindowServices& services) : messages_(services.log) {
  application_.installEventFilter(&inputGuard_);
  prepareAccessibility();
  QApplication::setQuitOnLastWindowClosed(false);  // the delegate is asked
  const Appearance appearance = wantedAppearance(QApplication::palette());
  QApplication::setStyle(new QtStyle);
  QApplication::setPalette(paletteFor(appearance));
  // The system's font, in the size that the descriptions are laid out for.
  QFont font = QApplication::font();
  font.setPixelSize(textSize);
  QApplication::setFont(font);
  toolkit_ = std::make_unique<QtToolkit>(services);
}
