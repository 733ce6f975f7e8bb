// SPDX-License-Identifier: Apache-2.0

#include <QBuffer>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>

#include "platform/window/qt/PlainTiff.h"
#include "platform/window/qt/QtPalette.h"
#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtRichText.h"
#include "platform/window/qt/WindowTest.h"

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

TEST_F(ToolkitTest, PicturesAreSharpAndDamagedOnesAreNone) {
  QImage image(96, 48, QImage::Format_ARGB32);
  image.fill(Qt::red);
  picture("red.tiff", image, "tiff");
  const auto read = std::dynamic_pointer_cast<const QtPicture>(toolkit().imageNamed("red"));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->fitted({24, 24}, 2).size(), QSize(48, 24)) << "two pixels a point, in its own proportions";

  image.fill(Qt::blue);
  picture("en.lproj/blue.png", image, "png");
  EXPECT_NE(toolkit().imageNamed("blue"), nullptr) << "in the user's language";

  const std::string whole = readFile(machine_.inBundle("Resources/red.tiff"));
  writeFile(machine_.inBundle("Resources/half.tiff"), whole.substr(0, whole.size() / 2));
  writeFile(machine_.inBundle("Resources/empty.icns"), "");
  writeFile(machine_.inBundle("Resources/bad.icns"), std::string("icns\0\0\1\0ic08\x7f\xff\xff\xff", 16));
  for (const char* const name : {"half", "empty", "bad", "missing"})
    EXPECT_EQ(toolkit().imageNamed(name), nullptr) << name;
  writeFile(machine_.onVolume("/icon.png"), "no picture");
  EXPECT_EQ(toolkit().imageWithContentsOfFile("/icon.png"), nullptr);
}

TEST_F(ToolkitTest, PlainPicturesAreReadWithoutAPlugIn) {
  QImage image(20, 10, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) image.setPixel(x, y, qRgba(x * 12, y * 20, 200, 128 + x));
  }
  picture("plain.tiff", image, "tiff");
  const std::string whole = readFile(machine_.inBundle("Resources/plain.tiff"));
  EXPECT_EQ(readPlainTiff(whole).convertToFormat(QImage::Format_ARGB32), image);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_TRUE(readPlainTiff(whole.substr(0, length)).isNull()) << length;
  }
}

TEST_F(ToolkitTest, AlertsGiveTheDefaultAnswerForItsButtonAlone) {
  const auto answer = [this](const Alert& alert, const std::function<void(QMessageBox&)>& act) {
    meanwhile([&act] {
      auto& box = *find<QMessageBox>("alert");
      EXPECT_GE(box.width(), 420);
      act(box);
    });
    return toolkit().runAlertPanel(alert);
  };
  const auto press = [](Qt::Key key) { return [key](QMessageBox& box) { QTest::keyClick(&box, key); }; };
  const auto close = [](QMessageBox& box) { box.close(); };
  const Alert statement{.title = "Title", .message = "", .defaultButton = "OK"};
  const Alert question{.title = "Title", .message = "Message", .defaultButton = "Agree", .alternateButton = ""};
  for (const Alert& alert : {statement, question}) {
    EXPECT_EQ(answer(alert, press(Qt::Key_Return)), AlertAnswer::defaultButton);
    EXPECT_EQ(answer(alert, press(Qt::Key_Escape)), AlertAnswer::alternateButton);
    EXPECT_EQ(answer(alert, close), AlertAnswer::alternateButton);
  }
  const auto pressSecond = [](QMessageBox& box) {
    EXPECT_EQ(box.buttons().size(), 2) << "though its table has no caption for it";
    if (box.buttons().size() != 2) return box.reject();
    EXPECT_FALSE(box.buttons()[1]->text().isEmpty());
    box.buttons()[1]->click();
  };
  EXPECT_EQ(answer(question, pressSecond), AlertAnswer::alternateButton);
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
    // Borders, and what marks the focus.
    for (const auto role : {QPalette::Mid, QPalette::Dark, QPalette::Link}) {
      EXPECT_GE(contrast(palette.color(role), palette.color(QPalette::Window)), 3) << role;
      EXPECT_GE(contrast(palette.color(role), palette.color(QPalette::Base)), 3) << role;
    }
  }
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  QTextDocument mirrored;
  showRichText(mirrored, text, Qt::white);
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
  EXPECT_TRUE(mirrored.firstBlock().blockFormat().alignment().testFlag(Qt::AlignRight)) << "a name in Latin letters";
}

}  // namespace
