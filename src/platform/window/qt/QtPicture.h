#pragma once

#include <QImage>
#include <QLabel>
#include <string>

#include "platform/FileSystem.h"
#include "platform/InterfaceOwner.h"

/// A picture with more pixels than points, so that it is sharp on every screen; it is scaled down to where it is shown.
class QtPicture : public Image {
 public:
  explicit QtPicture(QImage image) : image_(std::move(image)) {}
  [[nodiscard]] const QImage& image() const { return image_; }

  /// As large as fits into `size` points on a screen with so many pixels a point, in its own proportions.
  [[nodiscard]] QPixmap fitted(const QSize& size, qreal pixelRatio) const;

 private:
  QImage image_;
};

/// The picture in the file (the largest one when it holds several); null when there is none or it is damaged.
[[nodiscard]] Picture readPicture(const FileSystem& files, const std::string& path);

/// Shows the picture in the label, fitted to it now and whenever its size or screen changes; null shows nothing.
void showPicture(QLabel& label, const Picture& picture);
