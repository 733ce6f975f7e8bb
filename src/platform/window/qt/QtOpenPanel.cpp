#include "platform/window/qt/QtOpenPanel.h"

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
#include "foundation/Text.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr std::uint32_t newFolderPermissions = 0755;

/// The panel: a tree of folders, the path of the chosen one for the keyboard, and the buttons.
class Panel : public QDialog {
 public:
  Panel(const OpenPanel& panel, const OpenPanelServices& services, QWidget* window)
      : QDialog(window), panel_(panel), services_(services) {
    setObjectName("openPanel");
    setWindowModality(window != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
    setWindowTitle(toQt(panel.title));
    resize(520, 420);
    layOut();
    connectControls();
    addRoot();
    goTo(panel.startFolder);
  }

  [[nodiscard]] std::string chosen() const { return folderNamed(fromQt(path_.text())); }

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
    connect(&tree_, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem* item) {
      if (item != nullptr) path_.setText(toQt(pathOf(*item)));
    });
    connect(&path_, &QLineEdit::textChanged, this, [this] { choose_->setEnabled(isChoosable(chosen())); });
    connect(&path_, &QLineEdit::editingFinished, this, [this] {
      if (isChoosable(chosen())) goTo(chosen());
    });
  }

  [[nodiscard]] bool isChoosable(const std::string& path) const {
    if (path.empty()) return false;
    const auto attributes = services_.files.attributesOfItem(path);
    return attributes && attributes->type == ItemType::folder && !isPackage(path) && isLet(path);
  }

  [[nodiscard]] bool isLet(const std::string& path) const {
    return !panel_.shouldShowFilename || panel_.shouldShowFilename(path);
  }

  [[nodiscard]] bool isPackage(const std::string& path) const {
    const auto neighbours = services_.files.visibleEntries(deletingLastPathComponent(path));
    return std::any_of(neighbours.begin(), neighbours.end(),
                       [&](const WalkedItem& item) { return item.isPackage && item.path == path; });
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
    QList<QTreeWidgetItem*> children;
    for (const WalkedItem& entry : services_.files.visibleEntries(folder)) {
      const bool isFolder = entry.type == ItemType::folder && !entry.isPackage;
      if (isFolder && isLet(entry.path)) children.append(makeItem(entry.path));
    }
    if (children.isEmpty()) item.setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
    item.addChildren(children);
  }

  static QTreeWidgetItem* childNamed(const QTreeWidgetItem& parent, const std::string& path) {
    for (int i = 0; i < parent.childCount(); ++i) {
      if (pathOf(*parent.child(i)) == path) return parent.child(i);
    }
    return nullptr;
  }

  /// Opens the tree down to the folder, or to the last one on the way that is shown.
  void goTo(const std::string& folder) {
    QTreeWidgetItem* item = tree_.topLevelItem(0);
    std::string path = "/";
    const std::string wanted = folderNamed(folder);
    for (const std::string_view name : split(wanted, '/')) {
      if (name.empty()) continue;
      readChildren(*item);
      path = joinPath(path, name);
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
    if (name.empty() || name.find('/') != std::string::npos || name == "." || name == "..") return;
    QTreeWidgetItem* const parent = tree_.currentItem();
    if (parent == nullptr) return;
    const std::string path = joinPath(pathOf(*parent), name);
    const Status made = services_.files.createDirectory(path, newFolderPermissions);
    if (!made) {
      services_.toolkit.runAlertPanel({.title = services_.bundle.localizedString("browse_folder_failed"),
                                       .message = made.error().description(),
                                       .defaultButton = services_.bundle.localizedString("ok_button")});
      return;
    }
    parent->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    qDeleteAll(parent->takeChildren());
    readChildren(*parent);
    goTo(path);
  }

  const OpenPanel& panel_;
  OpenPanelServices services_;
  QLineEdit path_;
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

std::string folderNamed(std::string_view text) {
  const std::string_view path = trimmed(text);
  if (!path.starts_with('/')) return {};
  std::string folder = "/";
  for (const std::string_view name : split(path, '/')) {
    if (name == "..") {
      folder = deletingLastPathComponent(folder);
    } else if (name != ".") {
      folder = joinPath(folder, name);
    }
  }
  return folder.empty() ? "/" : folder;
}
