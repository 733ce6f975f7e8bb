// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtAlert.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>

#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr QSize pictureSize(56, 56);
constexpr int smallestWidth = 420;

/// Knows whether it was dismissed, which Qt takes for a press of the only button.
class Box : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;

  [[nodiscard]] bool wasDismissed() const { return wasDismissed_; }

 private:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) wasDismissed_ = true;
    QMessageBox::keyPressEvent(event);
  }
  void closeEvent(QCloseEvent* event) override {
    wasDismissed_ = true;
    QMessageBox::closeEvent(event);
  }

  bool wasDismissed_ = false;
};

void makeWide(QMessageBox& box) {
  auto* const grid = qobject_cast<QGridLayout*>(box.layout());
  if (grid == nullptr) return;
  const QMargins margins = grid->contentsMargins();
  auto* const width = new QSpacerItem(smallestWidth - margins.left() - margins.right(), 0);
  grid->addItem(width, grid->rowCount(), 0, 1, grid->columnCount());
}

}  // namespace

AlertAnswer askAlert(const Alert& alert, QWidget* window, const Picture& picture) {
  Box box(window);
  box.setObjectName("alert");
  box.setWindowTitle(window != nullptr ? window->windowTitle() : toQt(alert.title));
  box.setWindowModality(window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
  box.setAccessibleName(toQt(alert.title));
  box.setAccessibleDescription(toQt(alert.message));
  box.setTextFormat(Qt::PlainText);
  box.setText(toQt(alert.title));
  box.setInformativeText(toQt(alert.message));
  if (auto* const message = box.findChild<QLabel*>("qt_msgbox_informativelabel")) {
    message->setTextFormat(Qt::PlainText);
  }
  if (auto* const title = box.findChild<QLabel*>("qt_msgbox_label")) {
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
  }
  if (const auto* const shown = dynamic_cast<const QtPicture*>(picture.get())) {
    box.setIconPixmap(shown->fitted(pictureSize, box.devicePixelRatioF()));
  } else {
    box.setIcon(alert.style == Alert::Style::warning ? QMessageBox::Warning : QMessageBox::Information);
  }

  QPushButton* const accept = box.addButton(toQt(alert.defaultButton), QMessageBox::AcceptRole);
  box.setDefaultButton(accept);
  accept->setObjectName("defaultButton");
  QPushButton* refuse = nullptr;
  if (alert.alternateButton) {
    refuse = box.addButton(toQt(*alert.alternateButton), QMessageBox::RejectRole);
    refuse->setObjectName("alternateButton");
  }
  box.setEscapeButton(refuse != nullptr ? refuse : accept);
  makeWide(box);
  box.exec();
  if (window != nullptr) window->activateWindow();  // not every desktop gives it the keyboard back
  const bool isAccepted = box.clickedButton() == accept && !box.wasDismissed();
  return isAccepted ? AlertAnswer::defaultButton : AlertAnswer::alternateButton;
}
