// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtControls.h"

#include <QAbstractButton>
#include <QAction>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPalette>
#include <QProgressBar>
#include <QTextEdit>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include "platform/window/RareAnnouncements.h"
#include "platform/window/Typography.h"
#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtRichText.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int progressSteps = 1000;

/// For a control that takes plain text through `set`.
template <class Control, class Set>
ShowValue showPlain(Control& control, Set set) {
  return [&control, set](const ShownValue& value) {
    const auto text = plainText(value);
    if (text) std::invoke(set, control, toQt(*text));
    return text.has_value();
  };
}

/// A long text is seen from its start.
void showInLine(QLineEdit& line, const QString& text) {
  line.setText(text);
  line.home(false);
}

/// "&" marks a short cut in a caption, and there is none in a text that comes from a table.
QString caption(const QString& text) { return QString(text).replace('&', "&&"); }

template <class Control>
ShowValue showCaption(Control& control, void (Control::*set)(const QString&)) {
  return [&control, set](const ShownValue& value) {
    const auto text = plainText(value);
    if (text) (control.*set)(caption(toQt(*text)));
    return text.has_value();
  };
}

/// Only in the usual frame the text lies on a page of its own, else on the window.
QPalette::ColorRole backgroundOf(const QTextEdit& edit) {
  return edit.frameShape() == QFrame::StyledPanel ? QPalette::Base : QPalette::Window;
}

/// Notes how a text got the focus: it is framed for who moves the focus, and not when its page appears.
class FocusReason : public QObject {
 public:
  using QObject::QObject;

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) {
      const auto reason = static_cast<const QFocusEvent&>(*event).reason();
      watched->setProperty("isFocusMoved", reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
    }
    return QObject::eventFilter(watched, event);
  }
};

ShowValue showInTextEdit(QTextEdit& edit) {
  const QPalette::ColorRole background = backgroundOf(edit);
  edit.installEventFilter(new FocusReason(&edit));
  if (background == QPalette::Window) edit.viewport()->setAutoFillBackground(false);
  edit.document()->setDocumentMargin(background == QPalette::Window ? 2 : 12);
  return [&edit, background](const ShownValue& value) {
    const auto* const rich = std::get_if<RichText>(&value);
    if (rich == nullptr && !plainText(value)) return false;
    showRichText(*edit.document(), rich != nullptr ? *rich : RichText(*plainText(value)),
                 edit.palette().color(background));
    edit.moveCursor(QTextCursor::Start);
    return true;
  };
}

/// Keeps a text on one line and inside its label, by leaving out the middle; all of it is in the label's tool tip, and
/// told to who does not see the screen, now and then when it goes on changing.
class Eliding : public QObject {
 public:
  explicit Eliding(QLabel& label) : QObject(&label), label_(label) {
    label.installEventFilter(this);
    later_.setSingleShot(true);
    connect(&later_, &QTimer::timeout, this, [this] { label_.setAccessibleName(text_); });
  }

  void show(const QString& text) {
    text_ = text;
    label_.setToolTip(text);
    fit();
    if (!later_.isActive() && named_.tells(std::chrono::steady_clock::now())) {
      label_.setAccessibleName(text);
    } else if (!later_.isActive()) {
      later_.start(RareAnnouncements::interval);
    }
  }

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Resize) fit();
    return QObject::eventFilter(watched, event);
  }
  void fit() { label_.setText(label_.fontMetrics().elidedText(text_, Qt::ElideMiddle, label_.contentsRect().width())); }

  QLabel& label_;
  QString text_;
  RareAnnouncements named_;
  QTimer later_;  ///< until the name catches up with the text
};

ShowValue showInLabel(QLabel& label) {
  label.setTextFormat(Qt::PlainText);
  const bool isCut = !label.wordWrap() && label.sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
  if (!isCut) {
    return showPlain(label, [](QLabel& shown, const QString& text) {
      shown.setText(shown.wordWrap() ? toQt(withNumbersKeptToWords(fromQt(text))) : text);
    });
  }
  auto* const eliding = new Eliding(label);
  return showPlain(*eliding, &Eliding::show);
}

ShowValue showText(QObject& control) {
  if (auto* const edit = qobject_cast<QTextEdit*>(&control)) return showInTextEdit(*edit);
  if (auto* const label = qobject_cast<QLabel*>(&control)) return showInLabel(*label);
  if (auto* const line = qobject_cast<QLineEdit*>(&control)) return showPlain(*line, showInLine);
  if (auto* const button = qobject_cast<QAbstractButton*>(&control)) {
    return showCaption(*button, &QAbstractButton::setText);
  }
  if (auto* const action = qobject_cast<QAction*>(&control)) return showCaption(*action, &QAction::setText);
  if (auto* const menu = qobject_cast<QMenu*>(&control)) {
    return showPlain(*menu, [](QMenu& shown, const QString& title) {
      const bool hasLetter = !title.isEmpty() && title.front().isLetter();  // which opens it, together with Alt
      shown.setTitle((hasLetter ? "&" : "") + caption(title));
    });
  }
  if (auto* const box = qobject_cast<QGroupBox*>(&control)) return showCaption(*box, &QGroupBox::setTitle);
  return {};
}

ShowValue showEnabled(QObject& control) {
  if (auto* const action = qobject_cast<QAction*>(&control)) {
    return showFlag([action](bool flag) { action->setEnabled(flag); });
  }
  if (auto* const widget = qobject_cast<QWidget*>(&control)) {
    return showFlag([widget](bool flag) { widget->setEnabled(flag); });
  }
  return {};
}

ShowValue showVisible(QObject& control) {
  if (auto* const action = qobject_cast<QAction*>(&control)) {
    return showFlag([action](bool flag) { action->setVisible(flag); });
  }
  if (auto* const widget = qobject_cast<QWidget*>(&control)) {
    return showFlag([widget](bool flag) { widget->setVisible(flag); });
  }
  return {};
}

ShowValue showTicked(QObject& control) {
  if (auto* const action = qobject_cast<QAction*>(&control)) {
    action->setCheckable(true);
    return showFlag([action](bool flag) { action->setChecked(flag); });
  }
  auto* const button = qobject_cast<QAbstractButton*>(&control);
  if (button == nullptr || !button->isCheckable()) return {};
  return showFlag([button](bool flag) { button->setChecked(flag); });
}

ShowValue showImage(QObject& control) {
  auto* const label = qobject_cast<QLabel*>(&control);
  if (label == nullptr) return {};
  return showPicture([label](const Picture& picture) { showPicture(*label, picture); });
}

ShowValue showInBar(QObject& control) {
  auto* const bar = qobject_cast<QProgressBar*>(&control);
  if (bar == nullptr) return {};
  return showProgress([bar](std::optional<double> done) {
    bar->setRange(0, done ? progressSteps : 0);
    if (done) bar->setValue(static_cast<int>(std::lround(*done * progressSteps)));
  });
}

ShowValue showTitle(QObject& control) {
  auto* const widget = qobject_cast<QWidget*>(&control);
  return widget != nullptr ? showPlain(*widget, &QWidget::setWindowTitle) : ShowValue();
}

ShowValue showAccessibleName(QObject& control) {
  auto* const widget = qobject_cast<QWidget*>(&control);
  return widget != nullptr ? showPlain(*widget, &QWidget::setAccessibleName) : ShowValue();
}

struct Kind {
  const char* name;
  ShowValue (*make)(QObject& control);
};
constexpr Kind kinds[] = {{"bindText", showText},     {"bindEnabled", showEnabled},    {"bindVisible", showVisible},
                          {"bindTicked", showTicked}, {"bindImage", showImage},        {"bindProgress", showInBar},
                          {"bindTitle", showTitle},   {"bindName", showAccessibleName}};

}  // namespace

ShowValue makeBinding(const std::string& name, QObject& control) {
  const auto* const kind = std::ranges::find(kinds, name, &Kind::name);
  return kind != std::end(kinds) ? kind->make(control) : ShowValue();
}
