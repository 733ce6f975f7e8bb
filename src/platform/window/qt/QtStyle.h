// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QIcon>
#include <QProxyStyle>

/// Quiet controls, as a careful installer has them: round corners, thin lines, the default button in the accent colour,
/// and a ring around what has the keyboard. The rest is Fusion.
class QtStyle : public QProxyStyle {
 public:
  QtStyle() : QProxyStyle("Fusion") {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  [[nodiscard]] QRect subElementRect(SubElement element, const QStyleOption* option,
                                     const QWidget* widget) const override;
  [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                     const QWidget* widget) const override;
  [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* result) const override;
  [[nodiscard]] QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                                   const QWidget* widget) const override;
  [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                       const QWidget* widget) const override;
};
