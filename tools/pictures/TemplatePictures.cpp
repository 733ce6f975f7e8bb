// SPDX-License-Identifier: Apache-2.0

#include "TemplatePictures.h"

#include <QPainter>

namespace {

constexpr QColor grey(0x80, 0x86, 0x90);

QPen dashed(double width) {
  QPen pen(grey, width, Qt::CustomDashLine, Qt::RoundCap, Qt::RoundJoin);
  pen.setDashPattern({2.5, 2.5});
  return pen;
}

}  // namespace

QImage templateProduct() {
  constexpr int pixelsPerPoint = 2;
  QImage image(196 * pixelsPerPoint, 460 * pixelsPerPoint, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(pixelsPerPoint, pixelsPerPoint);
  painter.setOpacity(0.35);
  painter.setPen(dashed(2));
  painter.drawRoundedRect(QRectF(28, 310, 140, 120), 10, 10);
  painter.setPen(Qt::NoPen);
  painter.setBrush(grey);
  painter.drawEllipse(QPointF(132, 342), 11, 11);
  painter.drawPolygon(QPolygonF{{42, 416}, {84, 352}, {112, 394}, {124, 378}, {154, 416}});
  return image;
}

QImage templateInstaller(int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(side / 128.0, side / 128.0);
  painter.setPen(dashed(5));
  painter.setBrush(QColor(0xEC, 0xEE, 0xF1));
  painter.drawRoundedRect(QRectF(10, 10, 108, 108), 26, 26);
  painter.setPen(QPen(grey, 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawLine(QPointF(64, 32), QPointF(64, 74));
  painter.drawPolyline(QPolygonF{{46, 58}, {64, 76}, {82, 58}});
  painter.drawPolyline(QPolygonF{{38, 80}, {38, 94}, {90, 94}, {90, 80}});
  return image;
}
