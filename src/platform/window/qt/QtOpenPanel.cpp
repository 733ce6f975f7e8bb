// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtOpenPanel.h"

#include <QCollator>
#include <QDialog>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "foundation/Path.h"
#include "platform/window/FolderChoice.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr std::uint32_t newFolderPermissions = 0755;

/// Text keys of what cannot be chosen, and why; a path that is being typed is no mistake yet.
const char* textKeyOf(FolderChoice::Problem problem) {
  switch (problem) {
    case FolderChoice::Problem::none:
    case FolderChoice::Problem::noPath: break;
    case FolderChoice::Problem::missing: return "browse_problem_missing";
    case FolderChoice::Problem::notAFolder: return "browse_problem_file";
    case FolderChoice::Problem::package: return "browse_problem_package";
    case FolderChoice::Problem::unreadable: return "browse_problem_unreadable";
  }
  return nullptr;
}

/// The panel: the path of the chosen folder, a tree of folders that follows it, and the buttons.
class Panel : public QDialog {
 public:
  Panel(const OpenPanel& panel, const OpenPanelServices& services, QWidget* window)
      : QDialog(window), panel_(panel), services_(services), choice_(services.files, panel.shouldShowFilename) {
    setObjectName("openPanel");
    setWindowModality(window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
    setWindowTitle(toQt(panel.title));
    resize(520, 420);
    layOut();
    connectControls();
    addRoot();
    order_.setNumericMode(true);
    order_.setCaseSensitivity(Qt::CaseInsensitive);
    choose(panel.startFolder);
    showInTree();
  }

  [[nodiscard]] const std::string& chosen() const { return choice_.path(); }

 private:
  [[nodiscard]] QString text(const char* key) const { return toQt(services_.bundle.localizedString(key)); }

  void layOut() {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 18, 20, 18);
    layout->setSpacing(10);
    auto* const message = new QLabel(toQt(panel_.message));
    message->setTextFormat(Qt::PlainText);
    message->setWordWrap(true);
    message->setVisible(!panel_.message.empty());
    layout->addWidget(message);

    path_.setObjectName("path");
    path_.setAccessibleName(text("browse_folder_label"));
    layout->addWidget(&path_);
    problem_.setObjectName("problem");
    problem_.setWordWrap(true);
    problem_.setTextFormat(Qt::PlainText);
    layout->addWidget(&problem_);
    tree_.setObjectName("folders");
    tree_.setAccessibleName(text("browse_folders_label"));
    tree_.setHeaderHidden(true);
    tree_.setUniformRowHeights(true);
    layout->addWidget(&tree_, 1);

    newFolder_ = buttons_.addButton(text("browse_new_folder"), QDialogButtonBox::ResetRole);
    newFolder_->setObjectName("newFolder");
    newFolder_->setAutoDefault(false);
    auto* const cancel = buttons_.addButton(text("browse_cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName("cancel");
    cancel->setAutoDefault(false);
    choose_ = buttons_.addButton(toQt(panel_.prompt), QDialogButtonBox::AcceptRole);
    choose_->setObjectName("choose");
    choose_->setDefault(true);
    layout->addWidget(&buttons_);
  }

  void connectControls() {
    connect(&buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(newFolder_, &QPushButton::clicked, this, [this] { makeFolder(); });
    connect(&tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { readChildren(*item); });
    connect(&tree_, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* item) { pick(item); });
    connect(&tree_, &QTreeWidget::itemClicked, this, [this](const QTreeWidgetItem* item) { pick(item); });
    connect(&path_, &QLineEdit::textChanged, this, [this](const QString& text) {
      choice_.setTyped(fromQt(text));
      judge();
    });
    connect(&path_, &QLineEdit::editingFinished, this, [this] { showInTree(); });
  }

  void choose(const std::string& path) {
    choice_.setPath(path);
    const QSignalBlocker silence(path_);
    path_.setText(toQt(path));
    judge();
  }

  void pick(const QTreeWidgetItem* item) {
    if (item != nullptr && pathOf(*item) != choice_.path()) choose(pathOf(*item));
  }

  /// Enables the button for what can be chosen, and tells why anything else cannot be.
  void judge() {
    const FolderChoice::Problem problem = choice_.problem();
    choose_->setEnabled(problem == FolderChoice::Problem::none);
    const char* const key = textKeyOf(problem);
    problem_.setText(key != nullptr ? text(key) : QString());
    problem_.setVisible(key != nullptr);
  }

  [[nodiscard]] static std::string pathOf(const QTreeWidgetItem& item) {
    return fromQt(item.data(0, pathRole).toString());
  }

  static QTreeWidgetItem* makeItem(const std::string& path) {
    auto* const item = new QTreeWidgetItem({toQt(lastPathComponent(path))});
    item->setData(0, pathRole, toQt(path));
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return item;
  }

  void addRoot() {
    QTreeWidgetItem* const root = makeItem("/");
    root->setText(0, text("browse_volume"));
    tree_.addTopLevelItem(root);
    root->setExpanded(true);
  }

  void readChildren(QTreeWidgetItem& item) {
    // Once read, a folder is shown as it was; it would fold together under the person's hands.
    if (item.childIndicatorPolicy() != QTreeWidgetItem::ShowIndicator || item.childCount() > 0) return;
    const std::string folder = pathOf(item);
    std::vector<std::string> folders = choice_.foldersIn(folder);
    std::ranges::sort(folders, [this](const std::string& one, const std::string& other) {
      return order_.compare(toQt(lastPathComponent(one)), toQt(lastPathComponent(other))) < 0;
    });
    QList<QTreeWidgetItem*> children;
    for (const std::string& path : folders) children.append(makeItem(path));
    if (children.isEmpty()) item.setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
    item.addChildren(children);
  }

  static QTreeWidgetItem* childNamed(const QTreeWidgetItem& parent, const std::string& path) {
    for (int i = 0; i < parent.childCount(); ++i) {
      if (pathOf(*parent.child(i)) == path) return parent.child(i);
    }
    return nullptr;
  }

  /// Opens the tree down to the chosen folder, or to the last one on the way that is shown.
  void showInTree() {
    const QSignalBlocker silence(tree_);  // the choice stays what it is
    QTreeWidgetItem* item = tree_.topLevelItem(0);
    for (const std::string& path : pathsDownTo(choice_.path())) {
      if (path == pathOf(*item)) continue;
      readChildren(*item);
      QTreeWidgetItem* const child = childNamed(*item, path);
      if (child == nullptr) break;
      item->setExpanded(true);
      item = child;
    }
    tree_.setCurrentItem(item);
    tree_.scrollToItem(item, QAbstractItemView::PositionAtCenter);
  }

  void makeFolder() {
    QInputDialog question(this);
    question.setObjectName("newFolderName");
    question.setWindowModality(Qt::WindowModal);
    question.setWindowTitle(text("browse_new_folder"));
    question.setLabelText(text("browse_new_folder_name"));
    question.setOkButtonText(text("browse_create"));
    question.setCancelButtonText(text("browse_cancel"));
    if (question.exec() != QDialog::Accepted) return;
    const std::string name = fromQt(question.textValue());
    if (name.empty()) return;
    QTreeWidgetItem* const parent = tree_.currentItem();
    const std::string folder = choice_.problem() == FolderChoice::Problem::none ? choice_.path() : pathOf(*parent);
    const bool isName = name.find('/') == std::string::npos && name != "." && name != "..";
    const std::string path = joinPath(folder, name);
    const Status made = isName ? services_.files.createDirectory(path, newFolderPermissions)
                               : Status(Error::posix(std::errc::invalid_argument, name));
    if (!made) {
      services_.toolkit.runAlertPanel({.title = services_.bundle.localizedString("browse_folder_failed"),
                                       .message = made.error().description(),
                                       .defaultButton = services_.bundle.localizedString("ok_button")});
      return;
    }
    if (pathOf(*parent) == folder) {
      parent->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
      qDeleteAll(parent->takeChildren());
      readChildren(*parent);
    }
    choose(path);
    showInTree();
  }

  const OpenPanel& panel_;
  OpenPanelServices services_;
  FolderChoice choice_;
  QCollator order_{QLocale(toQt(services_.user.preferredLanguages().front()))};
  QLineEdit path_;
  QLabel problem_;
  QTreeWidget tree_;
  QDialogButtonBox buttons_;
  QPushButton* newFolder_ = nullptr;
  QPushButton* choose_ = nullptr;
};

}  // namespace

std::optional<std::string> askForFolder(const OpenPanel& panel, const OpenPanelServices& services, QWidget* window) {
  Panel dialogue(panel, services, window);
  if (dialogue.exec() != QDialog::Accepted) return std::nullopt;
  return dialogue.chosen();
}
