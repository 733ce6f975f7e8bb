// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtPicture.h"

#include <QBuffer>
#include <QEvent>
#include <QImageIOHandler>
#include <QImageIOPlugin>
#include <QImageReader>
#include <QPixmap>
#include <QPluginLoader>
#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/window/qt/PlainTiff.h"
#include "platform/window/qt/QtMessages.h"
#include "platform/window/qt/QtPlugins.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr std::size_t largestFile = std::size_t{32} << 20U;
constexpr int largestPictureInMegabytes = 64;

/// The formats that are read, by how their files start.
const char* formatOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\x89PNG")) return "png";
  if (bytes.starts_with("icns")) return "icns";
  if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) return "tiff";
  if (bytes.starts_with("\xFF\xD8\xFF")) return "jpeg";
  return nullptr;
}

/// What reads the format, from the one plug-in that does; null for a format that Qt reads itself. Its own search would
/// load every plug-in of the kind first, which takes longer than reading the picture.
std::unique_ptr<QImageIOHandler> handlerFor(const char* format, QIODevice& device) {
  QPluginLoader loader(QString("imageformats/q") + format);
  auto* const plugin = qobject_cast<QImageIOPlugin*>(loader.instance());
  return std::unique_ptr<QImageIOHandler>(plugin != nullptr ? plugin->create(&device, format) : nullptr);
}

/// A file for icons holds the same picture in several sizes.
QImage readLargest(QImageIOHandler& handler) {
  QImage largest;
  for (int i = 0; i < std::max(1, handler.imageCount()); ++i) {
    QImage image;
    if (i > 0 && !handler.jumpToNextImage()) break;
    if (handler.canRead() && handler.read(&image) && image.width() > largest.width()) largest = image;
  }
  return largest;
}

/// Fits the picture to its label.
class Fitting : public QObject {
 public:
  explicit Fitting(QLabel& label) : QObject(&label), label_(label) { label.installEventFilter(this); }

  void show(Picture picture) {
    picture_ = std::move(picture);
    fit();
  }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto type = event->type();
    if (type == QEvent::Resize || type == QEvent::Show || type == QEvent::ScreenChangeInternal) fit();
    return QObject::eventFilter(watched, event);
  }

  void fit() {
    const auto* const picture = dynamic_cast<const QtPicture*>(picture_.get());
    const QPixmap pixmap =
        picture != nullptr ? picture->fitted(label_.contentsRect().size(), label_.devicePixelRatioF()) : QPixmap();
    // The label would ask its layout for the picture's size again, and get another one.
    if (pixmap.size() == label_.pixmap().size() && shown_ == picture_) return;
    shown_ = picture_;
    label_.setPixmap(pixmap);
  }

  QLabel& label_;
  Picture picture_;
  Picture shown_;
};

}  // namespace

QPixmap QtPicture::fitted(const QSize& size, qreal pixelRatio) const {
  const QSize pixels = image_.size().scaled(size * pixelRatio, Qt::KeepAspectRatio);
  if (pixels.isEmpty()) return {};
  QPixmap pixmap = QPixmap::fromImage(image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  pixmap.setDevicePixelRatio(pixelRatio);
  return pixmap;
}

Picture readPicture(const FileSystem& files, const std::string& path, const std::string& meaning) {
  const auto bytes = files.readFile(path, largestFile);
  const char* const format = bytes ? formatOf(*bytes) : nullptr;
  if (format == nullptr) return nullptr;
  if (QImage plain = readPlainTiff(*bytes); !plain.isNull()) {
    plain.convertTo(QImage::Format_ARGB32);
    return std::make_shared<QtPicture>(std::move(plain), meaning);
  }
  QByteArray data = QByteArray::fromRawData(bytes->data(), static_cast<qsizetype>(bytes->size()));
  QBuffer buffer(&data);
  if (!buffer.open(QIODevice::ReadOnly)) return nullptr;
  QImageReader::setAllocationLimit(largestPictureInMegabytes);
  if (format == std::string_view("tiff")) silenceTiff();
  const std::unique_ptr<QImageIOHandler> handler = handlerFor(format, buffer);
  const NoPlugins none;  // a reader of Qt's own would look through them all first
  QImage largest = handler != nullptr ? readLargest(*handler) : QImageReader(&buffer, format).read();
  if (largest.isNull()) return nullptr;
  largest.convertTo(QImage::Format_ARGB32);  // one of few colours would stay so when it is scaled
  return std::make_shared<QtPicture>(std::move(largest), meaning);
}

void showPicture(QLabel& label, const Picture& picture) {
  auto* fitting = dynamic_cast<Fitting*>(label.findChild<QObject*>("pictureFitting", Qt::FindDirectChildrenOnly));
  if (fitting == nullptr) {
    fitting = new Fitting(label);
    fitting->setObjectName("pictureFitting");
  }
  const auto* const shown = dynamic_cast<const QtPicture*>(picture.get());
  if (shown != nullptr && !shown->meaning().empty()) label.setAccessibleName(toQt(shown->meaning()));
  fitting->show(picture);
}
