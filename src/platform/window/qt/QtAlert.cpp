#include "platform/window/qt/QtAlert.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr QSize pictureSize(56, 56);

}  // namespace

AlertAnswer askAlert(const Alert& alert, QWidget* window, const Picture& picture) {
  QMessageBox box(window);
  box.setObjectName("alert");
  box.setWindowModality(window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
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
  QPushButton* refuse = nullptr;
  box.setDefaultButton(accept);
  accept->setObjectName("defaultButton");
  if (!alert.alternateButton.empty()) {
    refuse = box.addButton(toQt(alert.alternateButton), QMessageBox::RejectRole);
    refuse->setObjectName("alternateButton");
  }
  box.setEscapeButton(refuse != nullptr ? refuse : accept);
  box.exec();
  const bool isRefused = refuse != nullptr && box.clickedButton() != accept;
  return isRefused ? AlertAnswer::alternateButton : AlertAnswer::defaultButton;
}
