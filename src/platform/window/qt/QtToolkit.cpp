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

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "platform/window/qt/QtAlert.h"
#include "platform/window/qt/QtInterface.h"
#include "platform/window/qt/QtOpenPanel.h"
#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtPlugins.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr std::size_t largestDescription = std::size_t{4} << 20U;
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

Error unusable(const std::string& name, const std::string& why) {
  Error error = Error::posix(std::errc::invalid_argument, name);
  error.userInfo[std::string(Error::localizedDescriptionKey)] = formatted("Interface %@: %@", name, why);
  return error;
}

}  // namespace

QtToolkit::QtToolkit(const WindowServices& services) : services_(services) {
  const bool isMirrored = services.bundles.mainBundle().localizedString("layout_direction") == "rightToLeft";
  QApplication::setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
}

QtToolkit::~QtToolkit() = default;

AlertAnswer QtToolkit::runAlertPanel(const Alert& alert) {
  const char* const picture = alert.style == Alert::Style::warning ? "Caution" : "Installer";
  const Bundle& bundle = services_.bundles.mainBundle();
  Alert shown = alert;
  if (shown.defaultButton.empty()) shown.defaultButton = bundle.localizedString("ok_button", "OK", "Localizable");
  if (shown.alternateButton && shown.alternateButton->empty()) {
    shown.alternateButton = bundle.localizedString("browse_cancel", "Cancel", "Localizable");
  }
  return askAlert(shown, windows_.frontWindow(), imageNamed(picture));
}

std::optional<std::string> QtToolkit::runOpenPanel(const OpenPanel& panel) {
  return askForFolder(panel, {services_.files, services_.bundles.mainBundle(), services_.user, *this},
                      windows_.frontWindow());
}

Result<std::unique_ptr<Interface>> QtToolkit::loadInterface(const std::string& name, InterfaceOwner& owner) {
  const Bundle& bundle = services_.bundles.mainBundle();
  const auto description = services_.files.readFile(joinPath(bundle.resourcePath(), name + ".ui"), largestDescription);
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
  made->connectTo(owner,
                  {.interfaceName = name,
                   .log = services_.log,
                   .performOwnAction = [this](const std::string& action) { return performOwnAction(action); },
                   .catchUpAfter = {}},
                  {.bundle = bundle, .imageNamed = [this](const std::string& picture) { return imageNamed(picture); }});
  // With the texts in it: a menu bar without any has no height.
  fixSize(widgets);
  layOut(widgets);
  return std::unique_ptr<Interface>(std::move(made));
}

Picture QtToolkit::imageNamed(const std::string& name) {
  const auto known = pictures_.find(name);
  if (known != pictures_.end()) return known->second;
  const std::string meaning = services_.bundles.mainBundle().localizedString("picture_" + name);
  Picture picture;
  for (const char* const type : {"icns", "tiff", "png"}) {
    const auto path = services_.bundles.mainBundle().pathForResource(name, type);
    if (picture == nullptr && path) picture = readPicture(services_.files, *path, meaning);
  }
  return pictures_[name] = picture;
}

Picture QtToolkit::imageWithContentsOfFile(const std::string& path) { return readPicture(services_.files, path); }

void QtToolkit::run() {
  // The first page does not wait for it.
  QTimer::singleShot(iconDelay, &windows_, [this] {
    const auto icon = std::dynamic_pointer_cast<const QtPicture>(imageNamed("Installer"));
    if (icon != nullptr) QApplication::setWindowIcon(QIcon(QPixmap::fromImage(icon->image())));
  });
  windows_.run();
}

bool QtToolkit::performOwnAction(const std::string& action) {
  if (action == "quit:") {
    windows_.closeAll();
  } else if (action == "hide:") {
    windows_.hideAll();
  } else if (action == "about:") {
    showAbout();
  } else {
    return false;
  }
  return true;
}

void QtToolkit::showAbout() {
  const Bundle& bundle = services_.bundles.mainBundle();
  const std::string version = bundle.infoValue("CFBundleShortVersionString").text();
  const std::string copyright = bundle.infoValue("NSHumanReadableCopyright").text();
  runAlertPanel({.title = bundle.infoValue("CFBundleName").text(),
                 .message = formatted(bundle.localizedString("about_version_fmt"), version) +
                            (copyright.empty() ? "" : "\n" + copyright),
                 .defaultButton = bundle.localizedString("ok_button"),
                 .style = Alert::Style::informational});
}
