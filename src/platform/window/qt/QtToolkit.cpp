// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtToolkit.h"

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QLayout>
#include <QMainWindow>
#include <QTimer>
#include <QUiLoader>
#include <chrono>
#include <utility>

#include "platform/window/qt/QtAlert.h"
#include "platform/window/qt/QtInterface.h"
#include "platform/window/qt/QtOpenPanel.h"
#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtPlugins.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr std::chrono::milliseconds iconDelay(100);

/// Gives every widget its place now, so that frames are right before the window is shown.
void layOut(QWidget& widget) {
  widget.ensurePolished();
  if (widget.layout() != nullptr) widget.layout()->activate();
  for (QWidget* const child : widget.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (!child->isWindow()) layOut(*child);
  }
}

/// What Designer's own properties cannot say: holders of pages that the program takes out ("shelf") are never shown
/// themselves; a text may have another size ("textSize", in points of the window).
void finish(QWidget& top) {
  for (QWidget* const widget : top.findChildren<QWidget*>()) {
    if (widget->property("shelf").toBool()) widget->hide();
    const int size = widget->property("textSize").toInt();
    if (size <= 0) continue;
    QFont font = widget->font();
    font.setPixelSize(size);
    widget->setFont(font);
  }
}

/// A window whose content has one size has one size, too.
void fixSize(QWidget& top) {
  const auto* const window = qobject_cast<const QMainWindow*>(&top);
  const QWidget* const content = window != nullptr ? window->centralWidget() : nullptr;
  if (content != nullptr && content->minimumSize() == content->maximumSize()) {
    top.layout()->setSizeConstraint(QLayout::SetFixedSize);
    top.adjustSize();
  }
}

/// A loader that knows Qt's own widgets. One plug-in of Designer's would bring half of what Qt is with it.
std::unique_ptr<QUiLoader> makeLoader() {
  const NoPlugins none;
  auto loader = std::make_unique<QUiLoader>();
  loader->setTranslationEnabled(false);
  return loader;
}

/// Where a language is read from the right, layouts mirror what is in them; this does the same for fixed places.
void mirrorPlaces(const QWidget& top) {
  for (QWidget* const widget : top.findChildren<QWidget*>()) {
    const QWidget* const parent = widget->parentWidget();
    const bool isPlain = parent != nullptr && parent->metaObject() == &QWidget::staticMetaObject;
    if (!isPlain || parent->layout() != nullptr || widget->isWindow()) continue;
    const int width = std::max(parent->minimumWidth(), parent->width());
    widget->move(width - widget->x() - widget->width(), widget->y());
  }
}

}  // namespace

QtToolkit::QtToolkit(const WindowServices& services) : WindowToolkit(services) {
  const bool isMirrored = bundle().localizedString("layout_direction") == "rightToLeft";
  QApplication::setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
}

QtToolkit::~QtToolkit() = default;

AlertAnswer QtToolkit::askAlert(const Alert& alert, const Picture& picture) {
  return ::askAlert(alert, windows_.frontWindow(), picture);
}

std::optional<std::string> QtToolkit::runOpenPanel(const OpenPanel& panel) {
  return askForFolder(panel, {services().files, bundle(), services().user, *this}, windows_.frontWindow());
}

Result<std::unique_ptr<Interface>> QtToolkit::loadInterface(const std::string& name, InterfaceOwner& owner) {
  const auto description = readDescription(name);
  if (!description) return description.error();
  QByteArray bytes(description->data(), static_cast<qsizetype>(description->size()));
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  if (loader_ == nullptr) loader_ = makeLoader();
  std::unique_ptr<QWidget> top(loader_->load(&buffer));
  if (top == nullptr) return unusable(name, fromQt(loader_->errorString()));
  QWidget& widgets = *top;
  finish(widgets);
  if (QApplication::isRightToLeft()) mirrorPlaces(widgets);
  auto made = std::make_unique<QtInterface>(std::move(top), views_, windows_);
  made->connectTo(
      owner,
      {.interfaceName = name,
       .log = services().log,
       .performOwnAction = [this](const std::string& action) { return performOwnAction(action); },
       .catchUpAfter = {}},
      {.bundle = bundle(), .imageNamed = [this](const std::string& picture) { return imageNamed(picture); }});
  // With the texts in it: a menu bar without any has no height.
  fixSize(widgets);
  layOut(widgets);
  return std::unique_ptr<Interface>(std::move(made));
}

Picture QtToolkit::readPicture(const std::string& path, const std::string& meaning) {
  return ::readPicture(services().files, path, meaning);
}

void QtToolkit::run() {
  // The first page does not wait for it.
  QTimer::singleShot(iconDelay, &windows_, [this] {
    const auto icon = std::dynamic_pointer_cast<const QtPicture>(imageNamed("Installer"));
    if (icon != nullptr) QApplication::setWindowIcon(QIcon(QPixmap::fromImage(icon->image())));
  });
  windows_.run();
}
