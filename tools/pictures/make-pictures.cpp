// SPDX-License-Identifier: Apache-2.0

// Draws the installer's pictures, the icons of the sample volume's applications, and what a new bundle has in place of
// its maker's pictures:
//
//   make-pictures resources sample/icons src/kit/template
//
// They are checked in; `ninja make-pictures` builds this, for whom wants to change them. Each has several pixels a
// point, and is scaled down to where it is shown.

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>
#include <iostream>
#include <numbers>

#include "HostTiles.h"
#include "IconFile.h"
#include "TemplatePictures.h"

namespace {

constexpr QColor blue(0x1d, 0x72, 0xe8);
constexpr QColor violet(0x7a, 0x5a, 0xe6);
constexpr QColor amber(0xf2, 0x9a, 0x2e);

QColor withAlpha(QColor colour, double alpha) {
  colour.setAlphaF(static_cast<float>(alpha));
  return colour;
}

template <class Draw>
QImage picture(QSize points, double pixelsPerPoint, Draw draw) {
  QImage image((QSizeF(points) * pixelsPerPoint).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(pixelsPerPoint, pixelsPerPoint);
  painter.setPen(Qt::NoPen);
  draw(painter);
  return image;
}

QPointF onCircle(QPointF centre, double radius, double turn) {
  const double angle = 2 * std::numbers::pi * turn;
  return centre + QPointF(std::cos(angle), std::sin(angle)) * radius;
}

/// The blades of a camera's shutter around a hole with six corners, each in a colour between two.
void drawShutter(QPainter& painter, QPointF centre, double radius, double hole, const QColor& from, const QColor& to,
                 double alpha) {
  for (int blade = 0; blade < 6; ++blade) {
    const double turn = (blade + 0.25) / 6.0;
    QPainterPath shape;
    shape.moveTo(onCircle(centre, hole, turn));
    shape.lineTo(onCircle(centre, hole, turn + 1.0 / 6));
    // The edge of a blade goes on straight to the rim.
    const QPointF edge = onCircle(centre, hole, turn + 1.0 / 6) - onCircle(centre, hole, turn);
    const double length = std::hypot(edge.x(), edge.y());
    const double reach = -hole / 2 + std::sqrt(radius * radius - hole * hole * 0.75);
    shape.lineTo(onCircle(centre, hole, turn + 1.0 / 6) + edge / length * reach);
    const QPointF previous = onCircle(centre, hole, turn) - onCircle(centre, hole, turn - 1.0 / 6);
    const QPointF start = onCircle(centre, hole, turn) + previous / length * reach;
    const QRectF rim(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
    const auto degrees = [&](QPointF point) {
      return -std::atan2(point.y() - centre.y(), point.x() - centre.x()) * 180 / std::numbers::pi;
    };
    const double first = degrees(onCircle(centre, hole, turn + 1.0 / 6) + edge / length * reach);
    double sweep = degrees(start) - first;
    while (sweep < 0) sweep += 360;
    shape.arcTo(rim, first, sweep);
    shape.closeSubpath();
    const double share = std::abs(blade - 3) / 3.0;
    const auto mix = [&](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
    const QColor colour(mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue()));
    QLinearGradient fill(onCircle(centre, hole, turn), onCircle(centre, radius, turn));
    fill.setColorAt(0, withAlpha(colour, alpha));
    fill.setColorAt(1, withAlpha(colour.lighter(125), alpha));
    painter.setBrush(fill);
    painter.drawPath(shape);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(withAlpha(Qt::white, alpha * 0.6), radius / 70));
    painter.drawPath(shape);
    painter.setPen(Qt::NoPen);
  }
}

/// Behind the step list; translucent, so that it suits a light window and a dark one.
QImage product() {
  return picture({196, 460}, 2, [](QPainter& painter) {
    const auto glow = [&](QPointF centre, double radius, const QColor& colour, double alpha) {
      QRadialGradient fill(centre, radius);
      fill.setColorAt(0, withAlpha(colour, alpha));
      fill.setColorAt(1, withAlpha(colour, 0));
      painter.setBrush(fill);
      painter.drawEllipse(centre, radius, radius);
    };
    glow({20, 400}, 170, blue, 0.22);
    glow({100, 440}, 94, violet, 0.18);
    drawShutter(painter, {42, 392}, 132, 52, violet, blue, 0.26);
    painter.setBrush(withAlpha(amber, 0.30));
    painter.drawEllipse(QPointF(158, 300), 7, 7);
    painter.setBrush(withAlpha(violet, 0.22));
    painter.drawEllipse(QPointF(136, 276), 11, 11);
    painter.setBrush(withAlpha(blue, 0.16));
    painter.drawEllipse(QPointF(170, 262), 5, 5);
  });
}

QImage installer(int side) {
  return picture({128, 128}, side / 128.0, [](QPainter& painter) {
    QLinearGradient body(0, 8, 0, 120);
    body.setColorAt(0, QColor(0x34, 0x3a, 0x46));
    body.setColorAt(1, QColor(0x1a, 0x1d, 0x26));
    painter.setBrush(body);
    painter.drawRoundedRect(QRectF(8, 8, 112, 112), 26, 26);
    drawShutter(painter, {64, 64}, 44, 17, violet, blue, 1);
    painter.setBrush(withAlpha(amber, 0.95));
    painter.drawEllipse(QPointF(64, 64), 8, 8);
  });
}

/// An application without a picture of its own.
QImage application() {
  return picture({128, 128}, 2, [](QPainter& painter) {
    QLinearGradient body(0, 8, 0, 120);
    body.setColorAt(0, QColor(0xf4, 0xf5, 0xf7));
    body.setColorAt(1, QColor(0xd3, 0xd7, 0xde));
    painter.setBrush(body);
    painter.setPen(QPen(QColor(0xa9, 0xae, 0xb8), 2));
    painter.drawRoundedRect(QRectF(9, 9, 110, 110), 25, 25);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0x8a, 0x92, 0xa0), 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLine(QPointF(42, 92), QPointF(66, 38));
    painter.drawLine(QPointF(86, 92), QPointF(62, 38));
    painter.drawLine(QPointF(34, 74), QPointF(94, 74));
  });
}

QImage dot(const QColor& top, const QColor& bottom) {
  return picture({12, 12}, 4, [&](QPainter& painter) {
    QLinearGradient fill(0, 1, 0, 11);
    fill.setColorAt(0, top);
    fill.setColorAt(1, bottom);
    painter.setBrush(fill);
    painter.drawEllipse(QPointF(6, 6), 4.5, 4.5);
  });
}

QImage checkmark() {
  return picture({64, 64}, 4, [](QPainter& painter) {
    QLinearGradient fill(0, 2, 0, 62);
    fill.setColorAt(0, QColor(0x4f, 0xc8, 0x67));
    fill.setColorAt(1, QColor(0x24, 0x9a, 0x42));
    painter.setBrush(fill);
    painter.drawEllipse(QPointF(32, 32), 29, 29);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{{19, 33}, {28, 42}, {45, 22}});
  });
}

QImage caution(const QColor& top, const QColor& bottom) {
  return picture({64, 64}, 4, [&](QPainter& painter) {
    QLinearGradient fill(0, 4, 0, 60);
    fill.setColorAt(0, top);
    fill.setColorAt(1, bottom);
    painter.setPen(QPen(fill, 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(fill);
    painter.drawPolygon(QPolygonF{{32, 9}, {58, 55}, {6, 55}});
    painter.setPen(QPen(Qt::white, 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(32, 24), QPointF(32, 38));
    painter.drawPoint(QPointF(32, 49));
  });
}

QImage error() {
  return picture({64, 64}, 4, [](QPainter& painter) {
    QLinearGradient fill(0, 2, 0, 62);
    fill.setColorAt(0, QColor(0xf2, 0x5c, 0x54));
    fill.setColorAt(1, QColor(0xc8, 0x2b, 0x27));
    painter.setBrush(fill);
    painter.drawEllipse(QPointF(32, 32), 29, 29);
    painter.setPen(QPen(Qt::white, 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(23, 23), QPointF(41, 41));
    painter.drawLine(QPointF(41, 23), QPointF(23, 41));
  });
}

bool save(const QImage& image, const QString& path) {
  QImageWriter writer(path);
  if (writer.write(image.convertToFormat(QImage::Format_ARGB32))) return true;
  std::cerr << path.toStdString() << ": " << writer.errorString().toStdString() << '\n';
  return false;
}

bool save(const QByteArray& bytes, const QString& path) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) return true;
  std::cerr << path.toStdString() << ": " << file.errorString().toStdString() << '\n';
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application_(argc, argv);
  if (argc != 4) {
    std::cerr << "make-pictures FOLDER ICONS TEMPLATE\n";
    return 64;
  }
  const QString folder = QString::fromLocal8Bit(argv[1]) + '/';
  const QString icons = QString::fromLocal8Bit(argv[2]) + '/';
  const QString ofTemplate = QString::fromLocal8Bit(argv[3]) + '/';
  const bool isDone = save(product(), folder + "Product.png") && save(iconFile(installer), folder + "Installer.icns") &&
                      save(application(), folder + "GenericApplication.png") &&
                      save(dot(QColor(0x4c, 0x9b, 0xff), QColor(0x0b, 0x5f, 0xd6)), folder + "DotBlue.tiff") &&
                      save(dot(QColor(0xb4, 0xb4, 0xb9), QColor(0x95, 0x95, 0x9b)), folder + "DotGray.tiff") &&
                      save(checkmark(), folder + "checkmark.png") && save(error(), folder + "Installer_Error.png") &&
                      save(caution(QColor(0xff, 0xc5, 0x3d), QColor(0xf0, 0x9a, 0x12)), folder + "Caution.png") &&
                      save(hostTile("PH", QColor(0x1c, 0x8c, 0x7c)), icons + "Photoshop.icns") &&
                      save(hostTile("EL", QColor(0xa8, 0x4a, 0x78)), icons + "Elements.icns") &&
                      save(hostTile("LI", QColor(0xc4, 0x7a, 0x1a)), icons + "Lightroom.icns") &&
                      save(hostTile("PE", QColor(0x5b, 0x64, 0x76)), icons + "Pelloria.icns") &&
                      save(templateProduct(), ofTemplate + "Product.png") &&
                      save(iconFile(templateInstaller), ofTemplate + "Installer.icns");
  return isDone ? 0 : 1;
}
