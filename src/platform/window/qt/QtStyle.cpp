// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtStyle.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QDialogButtonBox>
#include <QFrame>
#include <QTreeView>
#include <algorithm>

#include "platform/window/qt/QtStyleDrawing.h"

namespace {

constexpr int buttonHeight = 28;  // the ring included
constexpr int smallestButton = 88;
constexpr int scrollBarWidth = 11;

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
  drawScrollBar(*painter, *bar, widget);
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
