// SPDX-License-Identifier: Apache-2.0

// Walks through the wizard in Qt's window and prints what each page shows.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QProgressBar>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "Walk.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/window/qt/QtText.h"
#include "platform/window/qt/QtUserInterface.h"
#include "shell/Wizard.h"

namespace {

QWidget* mainWindow() {
  for (QWidget* const top : QApplication::topLevelWidgets()) {
    if (top->objectName() == "mainWindow" && top->isVisible()) return top;
  }
  return nullptr;
}

std::string shownIn(const QWidget& widget) {
  if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
    if (!label->pixmap(Qt::ReturnByValue).isNull()) return "(picture)";
    return label->text().isEmpty() ? "" : "text: " + fromQt(label->text());
  }
  if (const auto* const edit = qobject_cast<const QTextEdit*>(&widget)) return "page: " + fromQt(edit->toPlainText());
  if (const auto* const list = qobject_cast<const QListWidget*>(&widget)) {
    std::string text = "list:";
    for (int i = 0; i < list->count(); ++i) {
      const QListWidgetItem& item = *list->item(i);
      text += (item.checkState() == Qt::Checked ? " [x] " : " [ ] ") + fromQt(item.text()) + " (" +
              fromQt(item.data(Qt::UserRole).toString()) + ")";
    }
    return text;
  }
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget)) {
    const std::string kind = !button->isCheckable() ? "button: " : button->isChecked() ? "box [x] " : "box [ ] ";
    return kind + fromQt(button->text()) + (button->isEnabled() ? "" : " (disabled)");
  }
  if (const auto* const line = qobject_cast<const QLineEdit*>(&widget)) return "line: " + fromQt(line->text());
  return qobject_cast<const QProgressBar*>(&widget) != nullptr ? "progress" : "";
}

void collect(const QWidget& window, const QWidget& holder, std::vector<ShownControl>& all) {
  for (const QWidget* const widget : holder.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (!widget->isVisible() || widget->isWindow() || widget->objectName() == "menuBar") continue;
    const std::string text = shownIn(*widget);
    const QPoint place = widget->mapTo(&window, QPoint(0, 0));
    if (!text.empty()) all.push_back({static_cast<double>(place.y()), static_cast<double>(place.x()), text});
    if (text.empty()) collect(window, *widget, all);
  }
}

void print(const std::string& name) {
  const QWidget& window = *mainWindow();
  std::vector<ShownControl> all;
  collect(window, window, all);
  std::fputs(pageText(name, fromQt(window.windowTitle()), std::move(all)).c_str(), stdout);
}

void press(const QString& caption) {
  for (QWidget* const widget : QApplication::allWidgets()) {
    auto* const button = qobject_cast<QPushButton*>(widget);
    if (button == nullptr || !button->isVisible() || button->text() != caption) continue;
    return button->click();
  }
  std::printf("no button %s\n", fromQt(caption).c_str());
}

void perform(const Step& step) {
  switch (step.kind) {
    case Step::Kind::print:
      if (!step.text.empty()) print(step.text);
      break;
    case Step::Kind::press: press(toQt(step.text)); break;
    case Step::Kind::tick: {
      auto* const list = mainWindow()->findChild<QListWidget*>("foundHostsController");
      QListWidgetItem* const item = list->item(static_cast<int>(step.row));
      item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
      break;
    }
    case Step::Kind::choose:
      for (QAction* const action : mainWindow()->findChildren<QAction*>()) {
        if (action->text() == toQt(step.text)) action->trigger();
      }
      break;
  }
}

}  // namespace

/// WALK_VOLUME and WALK_BUNDLE in the environment, as for the other window.
int main() {
  const char* const volume = std::getenv("WALK_VOLUME");
  const char* const bundle = std::getenv("WALK_BUNDLE");
  if (volume == nullptr || bundle == nullptr) return 64;
  LinuxPlatform system(
      Volume(volume, bundle), bundle, *loggedInUser(),
      [](const WindowServices& services) {
        std::string problem;
        return QtUserInterface::make(services, problem);
      },
      Surface::window);
  const std::vector<Step> steps = walk();
  std::size_t next = 0;
  QTimer clock;  // ticks in whatever event loop is running
  QObject::connect(&clock, &QTimer::timeout, [&] {
    // From an event of its own: a clock does not tick while its tick is handled.
    if (mainWindow() == nullptr || next == steps.size()) return;
    QTimer::singleShot(0, qApp, [step = steps[next++]] { perform(step); });
  });
  clock.start(1000);
  return runWizard(system.platform()) && next == steps.size() ? 0 : 1;
}
