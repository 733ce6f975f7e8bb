#include "platform/qt/QtPicture.h"

#include <QBuffer>
#include <QEvent>
#include <QImageReader>
#include <QPixmap>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t largestFile = std::size_t{32} << 20U;
constexpr int largestPictureInMegabytes = 64;

/// The formats that are read, by how their files start. Qt would load every plug-in that it has to find out.
const char* formatOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("\x89PNG")) return "png";
  if (bytes.starts_with("icns")) return "icns";
  if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) return "tiff";
  if (bytes.starts_with("\xFF\xD8\xFF")) return "jpeg";
  return nullptr;
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

Picture readPicture(const FileSystem& files, const std::string& path) {
  const auto bytes = files.readFile(path, largestFile);
  const char* const format = bytes ? formatOf(*bytes) : nullptr;
  if (format == nullptr) return nullptr;
  QByteArray data = QByteArray::fromRawData(bytes->data(), static_cast<qsizetype>(bytes->size()));
  QBuffer buffer(&data);
  if (!buffer.open(QIODevice::ReadOnly)) return nullptr;
  QImageReader::setAllocationLimit(largestPictureInMegabytes);
  QImageReader reader(&buffer, format);
  reader.setAutoDetectImageFormat(false);
  QImage largest = reader.read();
  while (reader.format() == "icns" && reader.jumpToNextImage()) {  // the same picture in several sizes
    const QImage image = reader.read();
    if (image.width() > largest.width()) largest = image;
  }
  if (largest.isNull()) return nullptr;
  return std::make_shared<QtPicture>(std::move(largest));
}

void showPicture(QLabel& label, const Picture& picture) {
  auto* fitting = dynamic_cast<Fitting*>(label.findChild<QObject*>("pictureFitting", Qt::FindDirectChildrenOnly));
  if (fitting == nullptr) {
    fitting = new Fitting(label);
    fitting->setObjectName("pictureFitting");
  }
  fitting->show(picture);
}
