#include <QBuffer>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QTreeWidget>
#include <cstdlib>

#include "platform/qt/QtOpenPanel.h"
#include "platform/qt/QtPalette.h"
#include "platform/qt/QtPicture.h"
#include "platform/qt/QtRichText.h"
#include "platform/qt/WindowTest.h"

namespace {

constexpr const char* viewsForm = R"(<ui version="4.0"><class>top</class><widget class="QWidget" name="top">
  <property name="geometry"><rect><x>0</x><y>0</y><width>200</width><height>100</height></rect></property>
  <widget class="QWidget" name="box">
   <property name="geometry"><rect><x>10</x><y>20</y><width>100</width><height>50</height></rect></property>
  </widget>
  <widget class="QLabel" name="label">
   <property name="geometry"><rect><x>0</x><y>0</y><width>40</width><height>10</height></rect></property>
  </widget>
  <widget class="QListWidget" name="list"/></widget></ui>)";

constexpr const char* windowForm = R"(<ui version="4.0"><class>window</class><widget class="QMainWindow" name="window">
  <widget class="QWidget" name="content"><layout class="QVBoxLayout" name="column">
   <item><widget class="QPushButton" name="other"><property name="autoDefault"><bool>false</bool></property></widget></item>
   <item><widget class="QPushButton" name="go"><property name="default"><bool>true</bool></property>
    <property name="action" stdset="0"><string>nextView:</string></property></widget></item></layout></widget>
  <widget class="QMenuBar" name="bar"><widget class="QMenu" name="menu"><addaction name="quitItem"/></widget>
   <addaction name="menu"/></widget>
  <action name="quitItem"><property name="action" stdset="0"><string>quit:</string></property></action></widget></ui>)";

class ToolkitTest : public WindowTest {
 protected:
  void picture(const std::string& name, const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, format));
    writeFile(machine_.inBundle("Resources/" + name), bytes.toStdString());
  }
};

TEST_F(ToolkitTest, FramesHaveTheirOriginLowerLeft) {
  describe("Views", viewsForm);
  const auto made = load("Views");
  const auto box = made->view("box");
  const Rect frame = box->frame();
  EXPECT_EQ(frame.origin.x, 10);
  EXPECT_EQ(frame.origin.y, 30);
  box->setFrame({{0, 0}, {100, 40}});
  EXPECT_EQ(find<QWidget>("box")->geometry(), QRect(0, 60, 100, 40));

  // A view that is placed before it has a parent is turned over when it gets one.
  const auto other = load("Views");
  const auto row = other->view("top");
  row->setFrame({{0, 10}, {100, 20}});
  box->addSubview(row);
  EXPECT_EQ(row->frame().origin.y, 10);
  EXPECT_EQ(row->superview(), box) << "one view for a widget";
  EXPECT_EQ(made->view("box"), box);
  row->addSubview(box);  // would be a circle
  EXPECT_EQ(row->superview(), box);
}

TEST_F(ToolkitTest, ViewsOutliveTheirWidgets) {
  describe("Views", viewsForm);
  auto made = load("Views");
  const auto label = made->textField("label");
  const auto list = made->listView("list");
  const auto box = made->view("box");
  EXPECT_EQ(made->textField("list"), nullptr);
  EXPECT_EQ(made->listView("label"), nullptr);
  EXPECT_EQ(made->view("nobody"), nullptr);
  EXPECT_EQ(made->window("box"), nullptr);
  made.reset();
  label->setStringValue("text");
  label->setFont(true, TextColour::grey);
  list->selectRow(0);
  box->addSubview(label);
  box->setHidden(false);
  EXPECT_EQ(box->frame().size.width, 0);
  EXPECT_EQ(box->superview(), nullptr);
}

TEST_F(ToolkitTest, DescriptionsThatCannotBeUsedAreErrors) {
  EXPECT_FALSE(toolkit().loadInterface("Missing", owner_));
  const std::string whole = viewsForm;
  for (const std::string& damaged : {std::string(), std::string("no description"), whole.substr(0, whole.size() / 2),
                                     std::string(R"(<ui version="4.0"><class>x</class></ui>)")}) {
    describe("Damaged", damaged);
    const auto made = toolkit().loadInterface("Damaged", owner_);
    ASSERT_FALSE(made) << damaged;
    EXPECT_NE(made.error().description().find("Damaged"), std::string::npos);
  }
  describe("Strange", R"(<ui version="4.0"><class>x</class><widget class="QWidget" name="top">
                         <widget class="FluxCapacitor" name="flux"/></widget></ui>)");
  EXPECT_NE(load("Strange")->view("top"), nullptr);
  EXPECT_GE(log_.count("FluxCapacitor"), 1);
}

TEST_F(ToolkitTest, AlertsAreAnsweredByKeyAndButton) {
  const Alert alert{.title = "<b>T</b>", .message = "<i>M</i>", .defaultButton = "Yes", .alternateButton = "No"};
  const auto answer = [&](const Alert& shown, auto act) {
    meanwhile([act] { act(find<QMessageBox>("alert")); });
    return toolkit().runAlertPanel(shown);
  };
  const auto press = [](Qt::Key key) { return [key](QMessageBox* box) { QTest::keyClick(box, key); }; };
  EXPECT_EQ(answer(alert, press(Qt::Key_Return)), AlertAnswer::defaultButton);
  EXPECT_EQ(answer(alert, press(Qt::Key_Escape)), AlertAnswer::alternateButton);
  EXPECT_EQ(answer(alert, [](QMessageBox*) { find<QPushButton>("alternateButton")->click(); }),
            AlertAnswer::alternateButton);
  EXPECT_EQ(answer(alert,
                   [](QMessageBox* box) {
                     EXPECT_EQ(box->textFormat(), Qt::PlainText);
                     for (const QLabel* label : box->findChildren<QLabel*>())
                       EXPECT_NE(label->textFormat(), Qt::RichText);
                     find<QPushButton>("defaultButton")->click();
                   }),
            AlertAnswer::defaultButton);
  EXPECT_EQ(answer({.title = "T", .message = "M", .defaultButton = "OK"}, press(Qt::Key_Escape)),
            AlertAnswer::defaultButton);
}

TEST_F(ToolkitTest, TheApplicationEndsWhenItsLastWindowHasClosedAndItsDelegateSaysSo) {
  class Delegate : public ApplicationDelegate {
   public:
    int asked = 0;
    bool lets = false;
    bool windowShouldClose() override {
      ++asked;
      return lets;
    }
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const override { return true; }
  } delegate;
  describe("Window", windowForm);
  toolkit().setApplicationDelegate(&delegate);
  const auto made = load("Window");
  toolkit().run();  // nothing is shown: comes back at once
  const auto window = made->window("window");
  ASSERT_NE(window, nullptr);
  window->centre();
  auto* const widget = find<QWidget>("window");
  QTest::keyClick(find<QWidget>("other"), Qt::Key_Return);
  EXPECT_EQ(owner_.done, "nextView: go;") << "the return key presses the default button";

  widget->close();
  EXPECT_TRUE(widget->isVisible());
  EXPECT_EQ(delegate.asked, 1);
  delegate.lets = true;
  meanwhile([] { find<QAction>("quitItem")->trigger(); });
  toolkit().run();
  EXPECT_FALSE(widget->isVisible());
  EXPECT_EQ(delegate.asked, 2);

  window->centre();
  delegate.lets = false;
  meanwhile([&] { window->close(); });
  toolkit().runAlertPanel({.title = "T", .message = "M", .defaultButton = "OK"});
  EXPECT_FALSE(widget->isVisible()) << "the program's own wish is followed, and takes an alert with it";
  EXPECT_EQ(delegate.asked, 2);
  toolkit().run();
}

TEST_F(ToolkitTest, PicturesAreSharpAndDamagedOnesAreNone) {
  QImage image(96, 48, QImage::Format_ARGB32);
  image.fill(Qt::red);
  picture("red.tiff", image, "tiff");
  const auto read = std::dynamic_pointer_cast<const QtPicture>(toolkit().imageNamed("red"));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->fitted({24, 24}, 2).size(), QSize(48, 24)) << "two pixels a point, in its own proportions";

  const std::string whole = readFile(machine_.inBundle("Resources/red.tiff"));
  writeFile(machine_.inBundle("Resources/half.tiff"), whole.substr(0, whole.size() / 2));
  writeFile(machine_.inBundle("Resources/empty.icns"), "");
  writeFile(machine_.inBundle("Resources/bad.icns"), std::string("icns\0\0\1\0ic08\x7f\xff\xff\xff", 16));
  for (const char* const name : {"half", "empty", "bad", "missing"})
    EXPECT_EQ(toolkit().imageNamed(name), nullptr) << name;
  writeFile(machine_.onVolume("/icon.png"), "no picture");
  EXPECT_EQ(toolkit().imageWithContentsOfFile("/icon.png"), nullptr);

  // A picture in process colours, which printers want: four channels, photometric interpretation 5.
  std::string cmyk = whole;
  const std::size_t photometric = cmyk.find(std::string("\x06\x01\x03\0\1\0\0\0", 8));
  ASSERT_NE(photometric, std::string::npos);
  cmyk[photometric + 8] = 5;
  writeFile(machine_.inBundle("Resources/cmyk.tiff"), cmyk);
  static_cast<void>(toolkit().imageNamed("cmyk"));  // nothing or something, but no crash
}

TEST(RichTextTest, BecomesADocumentThatCanBeRead) {
  RichText text("plain\n");
  text.append("bold 20", {.bold = true, .italic = true, .size = 20});
  text.append("\nblue", {.colour = RichText::Colour{0, 0, 90}, .alignment = RichText::Alignment::centre});
  for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
    const QPalette palette = paletteFor(appearance);
    QTextDocument document;
    showRichText(document, text, palette.color(QPalette::Base));
    EXPECT_EQ(document.toPlainText(), "plain\nbold 20\nblue");
    const auto format = [&](int block) { return document.findBlockByNumber(block).begin().fragment().charFormat(); };
    EXPECT_EQ(format(0).fontWeight(), QFont::Normal);
    EXPECT_EQ(format(1).fontWeight(), QFont::Bold);
    EXPECT_TRUE(format(1).fontItalic());
    EXPECT_EQ(format(1).intProperty(QTextFormat::FontPixelSize), 20);
    EXPECT_EQ(document.lastBlock().blockFormat().alignment(), Qt::AlignHCenter);
    EXPECT_GE(contrast(format(2).foreground().color(), palette.color(QPalette::Base)), 4.5);
    for (const auto role : {QPalette::WindowText, QPalette::PlaceholderText}) {
      EXPECT_GE(contrast(palette.color(role), palette.color(QPalette::Window)), 4.5) << role;
    }
  }
}

class OpenPanelTest : public WindowTest {
 protected:
  OpenPanelTest() {
    for (const char* const folder :
         {"/Applications/Tools/Plug-Ins", "/Applications/App.app/Contents", "/Library/.hidden"}) {
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
  EXPECT_EQ(choose("/", type("/Applications/App.app")), std::nullopt);
  EXPECT_EQ(choose("/", type("/Applications/file")), std::nullopt);
  EXPECT_EQ(choose("/", type("Library")), std::nullopt);
  EXPECT_EQ(choose("/", [](QDialog& dialogue) { QTest::keyClick(&dialogue, Qt::Key_Escape); }), std::nullopt);
}

TEST_F(OpenPanelTest, MakesAFolderAndSelectsIt) {
  const auto chosen = choose("/Applications/Tools", [this](QDialog& dialogue) {
    meanwhile([] {
      auto* const question = find<QDialog>("newFolderName");
      QTest::keyClicks(question->findChild<QLineEdit*>(), "Mine");
      question->accept();
    });
    dialogue.findChild<QPushButton*>("newFolder")->click();
    dialogue.findChild<QPushButton*>("choose")->click();
  });
  EXPECT_EQ(chosen, "/Applications/Tools/Mine");
  EXPECT_TRUE(fs::is_directory(machine_.onVolume("/Applications/Tools/Mine")));
}

}  // namespace
