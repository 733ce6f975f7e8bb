// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>
#include <QLabel>
#include <string>

#include "platform/FileSystem.h"
#include "platform/InterfaceOwner.h"

/// A picture with more pixels than points, so that it is sharp on every screen; it is scaled down to where it is shown.
class QtPicture : public Image {
 public:
  explicit QtPicture(QImage image, std::string meaning = {}) : image_(std::move(image)), meaning_(std::move(meaning)) {}
  [[nodiscard]] const QImage& image() const { return image_; }

  /// What it says to who does not see it; empty for a picture that only adorns.
  [[nodiscard]] const std::string& meaning() const { return meaning_; }

  /// As large as fits into `size` points on a screen with so many pixels a point, in its own proportions.
  [[nodiscard]] QPixmap fitted(const QSize& size, qreal pixelRatio) const;

 private:
  QImage image_;
  std::string meaning_;
};

/// The picture in the file (the largest one when it holds several); null when there is none or it is damaged.
[[nodiscard]] Picture readPicture(const FileSystem& files, const std::string& path, const std::string& meaning = {});

/// Shows the picture in the label, fitted to it now and whenever its size or screen changes; null shows nothing.
void showPicture(QLabel& label, const Picture& picture);
