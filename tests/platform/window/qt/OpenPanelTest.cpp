// SPDX-License-Identifier: Apache-2.0

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <optional>
#include <set>

#include "platform/window/qt/QtText.h"
#include "platform/window/qt/WindowTest.h"

namespace {

class OpenPanelTest : public WindowTest {
 protected:
  OpenPanelTest() {
    for (const char* const folder : {"/Applications/Tools/Plug-Ins", "/Applications/App.app/Contents",
                                     "/Applications/Flat.plugin", "/Library/.hidden"}) {
      fs::create_directories(machine_.onVolume(folder));
    }
    writeFile(machine_.onVolume("/Applications/file"), "");
    fs::create_directory_symlink("/", machine_.onVolume("/Applications/link"));
  }

  std::optional<std::string> choose(const std::string& start, const std::function<void(QDialog&)>& act) {
    meanwhile([act] {
      auto* const dialogue = find<QDialog>("openPanel");
      act(*dialogue);
      if (dialogue->isVisible()) dialogue->reject();
    });
    return toolkit().runOpenPanel({.title = "Title",
                                   .message = "Message",
                                   .prompt = "Choose",
                                   .startFolder = start,
                                   .shouldShowFilename = [this](const std::string& path) {
                                     return !machine_.platform.files.exists(path + "/Contents");
                                   }});
  }
  static QStringList shown(const QTreeWidgetItem& item) {
    QStringList names;
    for (int i = 0; i < item.childCount(); ++i) names += item.child(i)->text(0);
    return names;
  }
};

TEST_F(OpenPanelTest, ShowsTheFoldersThatTheCallerLets) {
  const auto chosen = choose("/Applications/Tools", [](QDialog& dialogue) {
    auto& tree = *dialogue.findChild<QTreeWidget*>("folders");
    ASSERT_NE(tree.currentItem(), nullptr);
    EXPECT_EQ(tree.currentItem()->text(0), "Tools");
    EXPECT_EQ(shown(*tree.currentItem()->parent()), QStringList{"Tools"}) << "no files, links or packages";
    tree.setFocus();
    QTest::keyClick(&tree, Qt::Key_Right);
    QTest::keyClick(&tree, Qt::Key_Down);
    QTest::keyClick(&tree, Qt::Key_Return);
  });
  EXPECT_EQ(chosen, "/Applications/Tools/Plug-Ins");
}

TEST_F(OpenPanelTest, TakesAPathFromTheKeyboardAndNeverLeavesTheVolume) {
  const auto type = [](const char* path) {
    return [path](QDialog& dialogue) {
      auto& line = *dialogue.findChild<QLineEdit*>("path");
      line.selectAll();
      QTest::keyClicks(&line, path);
      QTest::keyClick(&line, Qt::Key_Return);
    };
  };
  EXPECT_EQ(choose("/nowhere/at/all", type("/Library/../../../Library/")), "/Library");
  EXPECT_EQ(choose("/", type("Library")), std::nullopt);
  EXPECT_EQ(choose("/", [](QDialog& dialogue) { QTest::keyClick(&dialogue, Qt::Key_Escape); }), std::nullopt);
}

TEST_F(OpenPanelTest, GivesTheFolderThatWasTypedOrRememberedThoughTheTreeDoesNotShowIt) {
  fs::create_directory_symlink("/Applications/Tools", machine_.onVolume("/Library/plugins"));
  for (const std::string path : {"/Library/plugins", "/Library/.hidden", "/Library"}) {
    const auto typed = [&path](QDialog& dialogue) {
      auto& line = *dialogue.findChild<QLineEdit*>("path");
      line.selectAll();
      QTest::keyClicks(&line, toQt(path));
      QTest::keyClick(&line, Qt::Key_Tab);  // ends the editing; the tree follows
      EXPECT_EQ(line.text(), toQt(path));
      dialogue.findChild<QPushButton*>("choose")->click();
    };
    EXPECT_EQ(choose("/", typed), path);
    EXPECT_EQ(choose(path, [](QDialog& dialogue) { dialogue.findChild<QPushButton*>("choose")->click(); }), path);
  }
}

TEST_F(OpenPanelTest, TellsWhyAFolderCannotBeChosen) {
  const std::string paths[] = {"/Library/plugins", "/Applications/file", "/Applications/App.app",
                               "/Applications/App.app/Contents", "/Applications/Flat.plugin"};
  std::set<std::string> reasons;
  for (const std::string& path : paths) {
    EXPECT_EQ(choose(path,
                     [&](QDialog& dialogue) {
                       EXPECT_EQ(dialogue.findChild<QLineEdit*>("path")->text(), toQt(path));
                       EXPECT_FALSE(dialogue.findChild<QPushButton*>("choose")->isEnabled()) << path;
                       auto& problem = *dialogue.findChild<QLabel*>("problem");
                       EXPECT_TRUE(problem.isVisible()) << path;
                       reasons.insert(fromQt(problem.text()));
                     }),
              std::nullopt);
  }
  EXPECT_EQ(reasons, (std::set<std::string>{"Missing", "File", "Package"}));
}

TEST_F(OpenPanelTest, OrdersFoldersAsPeopleDo) {
  for (const char* const name : {"b", "A", "Österreich", "c", "Zypern", "Part 10", "Part 9"}) {
    fs::create_directories(machine_.onVolume("/Library/" + std::string(name)));
  }
  choose("/Library/b", [](QDialog& dialogue) {
    const auto& tree = *dialogue.findChild<QTreeWidget*>("folders");
    EXPECT_EQ(fromQt(shown(*tree.currentItem()->parent()).join(", ")),
              "A, Application Support, b, c, Österreich, Part 9, Part 10, Zypern");
  });
}

}  // namespace
