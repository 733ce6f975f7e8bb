// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtStyle.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QFrame>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>
#include <QTreeView>
#include <algorithm>

#include "platform/window/qt/QtPalette.h"

namespace {

constexpr qreal radius = 5;
constexpr int buttonHeight = 28;  // the ring included
constexpr int smallestButton = 88;
constexpr int ring = 3;
constexpr int boxSize = 14;
constexpr int boxRing = 2;
constexpr int scrollBarWidth = 11;

QColor line(const QPalette& palette) { return palette.color(QPalette::Mid); }
/// Of what marks the control that has the focus.
QColor focusColour(const QPalette& palette) { return palette.color(QPalette::Link); }

QColor withAlpha(QColor colour, double alpha) {
  colour.setAlphaF(static_cast<float>(alpha));
  return colour;
}

/// Half a pixel inside, where a line of one pixel is sharp.
QRectF inside(const QRect& rect) { return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5); }

void drawRing(QPainter& painter, const QRectF& shape, const QPalette& palette, qreal corner, int width = ring) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(withAlpha(focusColour(palette), 0.85), width));
  painter.drawRoundedRect(shape.adjusted(-1, -1, 1, 1), corner + 1, corner + 1);
}

void drawButton(QPainter& painter, const QStyleOptionButton& button) {
  const QPalette& palette = button.palette;
  const bool isEnabled = button.state.testFlag(QStyle::State_Enabled);
  const bool isDown = button.state.testFlag(QStyle::State_Sunken);
  const bool isDefault = button.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled;
  const QRectF shape = inside(button.rect.adjusted(ring, ring, -ring, -ring));
  painter.setRenderHint(QPainter::Antialiasing);
  if (button.state.testFlag(QStyle::State_HasFocus) && isEnabled) drawRing(painter, shape, palette, radius);
  QColor face = palette.color(isDefault ? QPalette::Highlight : QPalette::Button);
  if (isDown) face = isDark(palette) && !isDefault ? face.lighter(125) : face.darker(115);
  if (!isEnabled) face = withAlpha(face, 0.5);
  painter.setPen(QPen(isDefault ? face.darker(112) : withAlpha(line(palette), isEnabled ? 1 : 0.5), 1));
  painter.setBrush(face);
  painter.drawRoundedRect(shape, radius, radius);
}

void drawButtonLabel(QPainter& painter, const QStyleOptionButton& button) {
  const bool isEnabled = button.state.testFlag(QStyle::State_Enabled);
  const bool isDefault = button.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled;
  painter.setPen(button.palette.color(isEnabled ? QPalette::Active : QPalette::Disabled,
                                      isDefault ? QPalette::HighlightedText : QPalette::ButtonText));
  painter.drawText(button.rect, Qt::AlignCenter | Qt::TextShowMnemonic, button.text);
}

void drawTickBox(QPainter& painter, const QStyleOption& option) {
  const QPalette& palette = option.palette;
  const bool isTicked = option.state.testFlag(QStyle::State_On);
  const double strength = option.state.testFlag(QStyle::State_Enabled) ? 1 : 0.45;
  QRect box(0, 0, boxSize, boxSize);
  box.moveCenter(option.rect.center());
  const QRectF shape = inside(box);
  painter.setRenderHint(QPainter::Antialiasing);
  if (option.state.testFlag(QStyle::State_HasFocus)) drawRing(painter, shape, palette, 3, boxRing);
  const QColor accent = withAlpha(palette.color(QPalette::Highlight), strength);
  painter.setPen(QPen(isTicked ? accent.darker(112) : withAlpha(palette.color(QPalette::Dark), strength), 1));
  painter.setBrush(isTicked ? accent : palette.color(QPalette::Base));
  painter.drawRoundedRect(shape, 3, 3);
  if (!isTicked) return;
  QPainterPath tick;
  tick.moveTo(shape.left() + 3.2, shape.top() + 6.8);
  tick.lineTo(shape.left() + 5.6, shape.top() + 9.4);
  tick.lineTo(shape.left() + 10, shape.top() + 3.6);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(withAlpha(Qt::white, strength), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(tick);
}

void drawFrame(QPainter& painter, const QStyleOption& option) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(line(option.palette), 1));
  painter.drawRect(inside(option.rect));
  if (!option.state.testFlag(QStyle::State_HasFocus)) return;
  painter.setPen(QPen(focusColour(option.palette), 2));
  painter.drawRect(QRectF(option.rect).adjusted(1, 1, -1, -1));
}

void drawField(QPainter& painter, const QStyleOption& option) {
  const QRectF shape = inside(option.rect.adjusted(0, ring, 0, -ring));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(option.palette.color(QPalette::Base));
  const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
  painter.setPen(QPen(hasFocus ? focusColour(option.palette) : line(option.palette), hasFocus ? 2 : 1));
  painter.drawRoundedRect(hasFocus ? shape.adjusted(0.5, 0.5, -0.5, -0.5) : shape, 4, 4);
}

QColor selectionIn(const QStyleOption& option) {
  const bool isActive = option.state.testFlag(QStyle::State_Active);
  const QColor colour = option.palette.color(isActive ? QPalette::Highlight : QPalette::WindowText);
  return withAlpha(colour, isActive ? 0.2 : 0.1);
}

/// A row of a list; its text keeps its colour when it is selected.
void drawRow(QPainter& painter, const QStyleOption& option) {
  painter.setRenderHint(QPainter::Antialiasing);
  if (option.state.testFlag(QStyle::State_HasFocus)) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(focusColour(option.palette), 1));
    painter.drawRoundedRect(inside(option.rect.adjusted(3, 1, -3, -1)), 4, 4);
  }
  if (!option.state.testFlag(QStyle::State_Selected)) return;
  painter.setBrush(selectionIn(option));
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(QRectF(option.rect).adjusted(3, 1, -3, -1), 4, 4);
}

/// A tree draws its rows in pieces, which have to meet.
void drawPieceOfRow(QPainter& painter, const QStyleOption& option) {
  if (option.state.testFlag(QStyle::State_Selected)) painter.fillRect(option.rect, selectionIn(option));
}

/// What is behind the scroll bar: a view with a quiet frame lets the window through.
QPalette::ColorRole groundOf(const QWidget* bar) {
  const QWidget* const holder = bar != nullptr ? bar->parentWidget() : nullptr;
  const auto* const view = holder != nullptr ? qobject_cast<const QFrame*>(holder->parentWidget()) : nullptr;
  return view != nullptr && view->frameShape() == QFrame::Panel ? QPalette::Window : QPalette::Base;
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& bar, const QRect& slider, const QWidget* widget) {
  painter.fillRect(bar.rect, bar.palette.color(groundOf(widget)));
  if (bar.minimum == bar.maximum) return;
  const bool isHeld = bar.state.testFlag(QStyle::State_Sunken) || bar.state.testFlag(QStyle::State_MouseOver);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(withAlpha(bar.palette.color(QPalette::WindowText), isHeld ? 0.5 : 0.28));
  painter.drawRoundedRect(QRectF(slider).adjusted(2, 2, -2, -2), 3.5, 3.5);
}

/// Where the part of the scroll bar that is moved lies: there are no arrows, and it is never too short to be caught.
QRect sliderOf(const QStyleOptionSlider& bar) {
  const bool isUpright = bar.orientation == Qt::Vertical;
  const int room = isUpright ? bar.rect.height() : bar.rect.width();
  const int range = bar.maximum - bar.minimum;
  const int length =
      range <= 0 ? room : std::clamp(room * bar.pageStep / (range + bar.pageStep), 28, std::max(28, room));
  const int start =
      QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, room - length, bar.upsideDown);
  return isUpright ? QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), length)
                   : QRect(bar.rect.x() + start, bar.rect.y(), length, bar.rect.height());
}

void drawProgress(QPainter& painter, const QStyleOptionProgressBar& bar) {
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF track = bar.rect;
  track = QRectF(track.left(), track.center().y() - 3, track.width(), 6);
  painter.setPen(Qt::NoPen);
  painter.setBrush(withAlpha(bar.palette.color(QPalette::WindowText), 0.14));
  painter.drawRoundedRect(track, 3, 3);
  const double range = bar.maximum - bar.minimum;
  if (range <= 0 || bar.progress <= bar.minimum) return;
  const double share = (bar.progress - bar.minimum) / range;
  QRectF done = track;
  done.setWidth(std::max(6.0, track.width() * share));
  if (bar.direction == Qt::RightToLeft) done.moveRight(track.right());
  painter.setBrush(bar.palette.color(QPalette::Highlight));
  painter.drawRoundedRect(done, 3, 3);
}

QPixmap chevron() {
  QPixmap pixmap(10, 10);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Qt::gray, 1.5));
  painter.drawPolyline(QPolygonF{{3, 1.5}, {6.5, 5}, {3, 8.5}});
  return pixmap;
}

}  // namespace

void QtStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  painter->save();
  switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck: drawTickBox(*painter, *option); break;
    case PE_Frame: drawFrame(*painter, *option); break;
    case PE_PanelLineEdit: drawField(*painter, *option); break;
    case PE_PanelItemViewItem:
      if (qobject_cast<const QTreeView*>(widget) != nullptr) {
        drawPieceOfRow(*painter, *option);
      } else {
        drawRow(*painter, *option);
      }
      break;
    case PE_PanelItemViewRow:  // what lies before the item itself
      drawPieceOfRow(*painter, *option);
      break;
    case PE_FrameFocusRect:  // these show it themselves
      if (qobject_cast<const QAbstractItemView*>(widget) != nullptr) break;
      if (qobject_cast<const QAbstractButton*>(widget) != nullptr) break;
      QProxyStyle::drawPrimitive(element, option, painter, widget);
      break;
    default: QProxyStyle::drawPrimitive(element, option, painter, widget); break;
  }
  painter->restore();
}

void QtStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
  const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
  const auto* const bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option);
  const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
  const auto* const item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
  const bool isBusy = bar != nullptr && bar->minimum == bar->maximum;
  painter->save();
  if (element == CE_PushButton && button != nullptr) {
    drawButton(*painter, *button);
    drawButtonLabel(*painter, *button);
  } else if (element == CE_ShapedFrame && frame != nullptr && frame->frameShape == QFrame::Panel) {
    // A quiet frame only shows the focus, and that to who moves it.
    const bool isMoved = widget != nullptr && widget->property("isFocusMoved").toBool();
    if (frame->state.testFlag(State_HasFocus) && isMoved) drawFrame(*painter, *frame);
  } else if (element == CE_ItemViewItem && item != nullptr) {
    QStyleOptionViewItem legible = *item;
    legible.palette.setColor(QPalette::HighlightedText, item->palette.color(QPalette::Text));
    QProxyStyle::drawControl(element, &legible, painter, widget);
  } else if (element == CE_ProgressBar && bar != nullptr && !isBusy) {
    drawProgress(*painter, *bar);
  } else {
    QProxyStyle::drawControl(element, option, painter, widget);
  }
  painter->restore();
}

void QtStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                 const QWidget* widget) const {
  const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || bar == nullptr) {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    return;
  }
  painter->save();
  drawScrollBar(*painter, *bar, sliderOf(*bar), widget);
  painter->restore();
}

QRect QtStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
  const QRect rect = QProxyStyle::subElementRect(element, option, widget);
  return element == SE_LineEditContents ? rect.adjusted(4, 0, -4, 0) : rect;
}

QRect QtStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                              const QWidget* widget) const {
  const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_ScrollBar || bar == nullptr) return QProxyStyle::subControlRect(control, option, part, widget);
  const QRect slider = sliderOf(*bar);
  const bool isUpright = bar->orientation == Qt::Vertical;
  QRect rect = bar->rect;
  switch (part) {
    case SC_ScrollBarSlider: return slider;
    case SC_ScrollBarGroove: return rect;
    case SC_ScrollBarSubPage:
      isUpright ? rect.setBottom(slider.top() - 1) : rect.setRight(slider.left() - 1);
      return rect;
    case SC_ScrollBarAddPage:
      isUpright ? rect.setTop(slider.bottom() + 1) : rect.setLeft(slider.right() + 1);
      return rect;
    default: return {};
  }
}

int QtStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight: return boxSize + 2 * boxRing;
    case PM_DefaultFrameWidth: return 1;
    case PM_ScrollBarExtent: return scrollBarWidth;
    default: return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int QtStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                       QStyleHintReturn* result) const {
  switch (hint) {
    case SH_DialogButtonLayout: return QDialogButtonBox::MacLayout;  // the default button lower right
    case SH_ItemView_ShowDecorationSelected: return true;
    case SH_UnderlineShortcut:
    case SH_DialogButtonBox_ButtonsHaveIcons: return false;
    default: return QProxyStyle::styleHint(hint, option, widget, result);
  }
}

QIcon QtStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
  // Every menu bar asks for this one, and to read it from its file would load all plug-ins for pictures.
  if (icon == SP_ToolBarHorizontalExtensionButton) return {chevron()};
  return QProxyStyle::standardIcon(icon, option, widget);
}

QSize QtStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                const QWidget* widget) const {
  const QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
  if (type == CT_ItemViewItem) return {wanted.width(), std::max(wanted.height(), 24)};
  if (type == CT_LineEdit) return {wanted.width(), std::max(wanted.height(), buttonHeight)};
  if (type != CT_PushButton) return wanted;
  return {std::max(size.width() + 30, smallestButton), std::max(size.height() + 6, buttonHeight)};
}
