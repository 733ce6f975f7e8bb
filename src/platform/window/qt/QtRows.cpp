// SPDX-License-Identifier: Apache-2.0

#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <utility>

#include "platform/window/qt/QtAccessible.h"
#include "platform/window/qt/QtControls.h"
#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int rowHeight = 40;
constexpr int rowPictureSize = 28;
constexpr int gap = 8;

/// Draws a row: tick, picture, text, and the smaller detail below it.
class RowDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 private:
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QStyle* const style = row.widget->style();
    QRect place = style->subElementRect(QStyle::SE_ItemViewItemText, &row, row.widget).adjusted(gap, 0, -gap, 0);
    const QString text = row.text;
    const QString detail = index.data(Qt::UserRole).toString();
    row.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    painter->save();
    painter->setPen(row.palette.color(QPalette::Text));
    painter->setFont(row.font);
    const QFontMetrics metrics(row.font);
    const int side = static_cast<int>(QStyle::visualAlignment(row.direction, Qt::AlignLeft)) | Qt::AlignAbsolute;
    if (detail.isEmpty()) {
      painter->drawText(place, Qt::AlignVCenter | side, metrics.elidedText(text, Qt::ElideMiddle, place.width()));
    } else {
      QFont small = row.font;
      small.setPixelSize(11);
      const QFontMetrics smallMetrics(small);
      place.setTop(place.top() + (place.height() - metrics.height() - smallMetrics.height()) / 2);
      painter->drawText(place, Qt::AlignTop | side, metrics.elidedText(text, Qt::ElideMiddle, place.width()));
      place.setTop(place.top() + metrics.height());
      painter->setFont(small);
      painter->setPen(row.palette.color(QPalette::PlaceholderText));
      painter->drawText(place, Qt::AlignTop | side, smallMetrics.elidedText(detail, Qt::ElideMiddle, place.width()));
    }
    painter->restore();
  }

  /// A click anywhere in a row ticks it.
  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
    const bool isClick = event->type() == QEvent::MouseButtonRelease &&
                         static_cast<const QMouseEvent&>(*event).button() == Qt::LeftButton;
    if (!isClick || !model->flags(index).testFlag(Qt::ItemIsUserCheckable)) {
      return QStyledItemDelegate::editorEvent(event, model, option, index);
    }
    const bool isTicked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, isTicked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return {QStyledItemDelegate::sizeHint(option, index).width(), rowHeight};
  }
};

/// The same picture whether the row is selected or not, where Qt would tint it.
QIcon plainIcon(const QPixmap& picture) {
  QIcon icon(picture);
  icon.addPixmap(picture, QIcon::Selected);
  return icon;
}

void fill(QListWidgetItem& item, const ListRow& row, const std::function<Picture()>& genericPicture, qreal pixelRatio) {
  item.setText(toQt(row.text));
  item.setData(Qt::UserRole, toQt(row.detail));
  item.setData(Qt::AccessibleDescriptionRole, toQt(row.detail));
  item.setToolTip(toQt(row.detail));
  item.setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
  item.setCheckState(row.isTicked ? Qt::Checked : Qt::Unchecked);
  const Picture shown = row.picture != nullptr ? row.picture : genericPicture();
  const auto* const picture = dynamic_cast<const QtPicture*>(shown.get());
  item.setIcon(picture != nullptr ? plainIcon(picture->fitted({rowPictureSize, rowPictureSize}, pixelRatio)) : QIcon());
}

bool isSameRow(const ListRow& one, const ListRow& other) {
  return one.text == other.text && one.detail == other.detail && one.picture == other.picture &&
         one.isTicked == other.isTicked;
}

}  // namespace

ShowValue makeRowsBinding(QObject& control, std::function<Picture()> genericPicture) {
  auto* const list = qobject_cast<QListWidget*>(&control);
  if (list == nullptr) return {};
  list->setItemDelegate(new RowDelegate(list));
  list->setIconSize({rowPictureSize, rowPictureSize});
  return [list, genericPicture = std::move(genericPicture),
          shown = std::vector<ListRow>()](const ShownValue& value) mutable {
    const auto* const rows = std::get_if<std::vector<ListRow>>(&value);
    if (rows == nullptr) return false;
    const QSignalBlocker silence(*list);  // only the person's ticks are told
    while (list->count() > static_cast<int>(rows->size())) delete list->takeItem(list->count() - 1);
    shown.resize(rows->size());
    for (std::size_t i = 0; i < rows->size(); ++i) {
      const bool isNew = static_cast<int>(i) >= list->count();
      if (isNew) list->addItem(new QListWidgetItem);
      // A tick that the owner does not keep is on the screen and not in `shown`.
      QListWidgetItem& item = *list->item(static_cast<int>(i));
      const bool isTicked = item.checkState() == Qt::Checked;
      if (isNew || !isSameRow(shown[i], (*rows)[i]) || isTicked != (*rows)[i].isTicked) {
        fill(item, (*rows)[i], genericPicture, list->devicePixelRatioF());
        if (!isNew && isTicked != (*rows)[i].isTicked) announceTick(*list, static_cast<int>(i));
      }
      shown[i] = (*rows)[i];
    }
    list->viewport()->update();
    return true;
  };
}
