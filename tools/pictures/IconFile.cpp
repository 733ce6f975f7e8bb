// SPDX-License-Identifier: Apache-2.0

#include "IconFile.h"

#include <QBuffer>
#include <QDataStream>

QByteArray iconFile(const std::function<QImage(int side)>& draw) {
  struct Size {
    const char* type;
    int side;
  };
  // Sizes of 16 and 32 points, then those that have their own name at two pixels a point.
  static constexpr Size sizes[] = {{"icp4", 16}, {"icp5", 32}, {"ic07", 128}, {"ic08", 256}, {"ic09", 512},
                                   {"ic11", 32}, {"ic12", 64}, {"ic13", 256}, {"ic14", 512}, {"ic10", 1024}};
  QByteArray pictures;
  QDataStream stream(&pictures, QIODevice::WriteOnly);
  for (const Size& size : sizes) {
    QBuffer png;
    draw(size.side).convertToFormat(QImage::Format_ARGB32).save(&png, "png");
    stream.writeRawData(size.type, 4);
    stream << static_cast<quint32>(png.size() + 8);
    stream.writeRawData(png.data().constData(), static_cast<int>(png.size()));
  }
  QByteArray file;
  QDataStream head(&file, QIODevice::WriteOnly);
  head.writeRawData("icns", 4);
  head << static_cast<quint32>(pictures.size() + 8);
  return file + pictures;
}
