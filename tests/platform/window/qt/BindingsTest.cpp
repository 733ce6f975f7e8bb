// SPDX-License-Identifier: Apache-2.0

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QTextEdit>

#include "platform/window/qt/WindowTest.h"

namespace {

std::string property(const std::string& name, const std::string& value) {
  return "<property name=\"" + name + R"(" stdset="0"><string>)" + value + "</string></property>";
}

std::string control(const std::string& kind, const std::string& name, const std::string& properties) {
  return "<item><widget class=\"" + kind + "\" name=\"" + name + "\">" + properties + "</widget></item>";
}

std::string form(const std::string& controls) {
  return R"(<ui version="4.0"><class>top</class><widget class="QWidget" name="top">
            <layout class="QVBoxLayout" name="column">)" +
         controls + "</layout></widget></ui>";
}

class BindingsTest : public WindowTest {
 protected:
  void show(const std::string& controls) {
    describe("Form", form(controls));
    interface_ = load("Form");
  }
  template <class Widget>
  Widget& the(const char* name) {
    return *find<Widget>(name);
  }

  std::unique_ptr<Interface> interface_;
};

TEST_F(BindingsTest, ControlsShowTheirPropertiesAndFollowThem) {
  owner_.values = {{"text", "A & B"}, {"flag", true}, {"done", 0.25}, {"rich", RichText("one\ntwo")}};
  show(control("QLabel", "label", property("bindText", "text") + property("bindVisible", "!flag")) +
       control("QPushButton", "button", property("bindText", "text") + property("bindEnabled", "flag")) +
       control("QProgressBar", "bar", property("bindProgress", "done")) +
       control("QTextEdit", "rich", property("bindText", "rich")));
  EXPECT_EQ(the<QLabel>("label").text(), "A & B");
  EXPECT_TRUE(the<QLabel>("label").isHidden());
  EXPECT_EQ(the<QPushButton>("button").text(), "A && B") << "no letter of a text is a short cut";
  EXPECT_EQ(the<QProgressBar>("bar").value() * 4, the<QProgressBar>("bar").maximum());
  EXPECT_EQ(the<QTextEdit>("rich").toPlainText(), "one\ntwo");
  EXPECT_TRUE(the<QTextEdit>("rich").isReadOnly());

  owner_.change("flag", false);
  owner_.change("text", "<b>C</b>");
  owner_.change("done", std::monostate());
  EXPECT_FALSE(the<QLabel>("label").isHidden());
  EXPECT_EQ(the<QLabel>("label").textFormat(), Qt::PlainText);
  EXPECT_FALSE(the<QPushButton>("button").isEnabled());
  EXPECT_EQ(the<QProgressBar>("bar").maximum(), 0) << "without a value the bar is only busy";
}

TEST_F(BindingsTest, HiddenPagesCatchUpWhenTheyAreShown) {
  using Rows = std::vector<ListRow>;
  owner_.values = {{"text", "before"}, {"rows", Rows{{.text = "one"}}}, {"flag", false}};
  show("<item><widget class=\"QWidget\" name=\"page\"><layout class=\"QVBoxLayout\" name=\"pageColumn\">" +
       control("QTextEdit", "edit", property("bindText", "text")) +
       control("QLabel", "label", property("bindText", "text") + property("bindVisible", "flag")) +
       control("QListWidget", "list", property("bindRows", "rows")) + "</layout></widget></item>");
  QWidget& window = the<QWidget>("top");
  window.show();
  interface_->view("page")->setHidden(true);
  owner_.change("text", "after");
  owner_.change("rows", Rows{{.text = "one"}, {.text = "two"}});
  EXPECT_EQ(the<QTextEdit>("edit").toPlainText(), "before") << "a page that nobody sees costs nothing";
  interface_->view("page")->setHidden(false);
  EXPECT_EQ(the<QTextEdit>("edit").toPlainText(), "after");
  EXPECT_EQ(the<QListWidget>("list").count(), 2);
  owner_.change("flag", true);
  EXPECT_EQ(the<QLabel>("label").text(), "after");
  window.hide();
  owner_.change("text", "at last");
  window.show();
  EXPECT_EQ(the<QTextEdit>("edit").toPlainText(), "at last");
}

TEST_F(BindingsTest, AClickAnywhereInARowTicksIt) {
  using Rows = std::vector<ListRow>;
  owner_.values = {{"rows", Rows{{.text = "one"}, {.text = "two"}}}};
  show(control("QListWidget", "list", property("bindRows", "rows")));
  auto& list = the<QListWidget>("list");
  the<QWidget>("top").show();
  const auto ticked = [&](size_t row) { return std::get<Rows>(owner_.values["rows"]).at(row).isTicked; };
  const QRect row = list.visualItemRect(list.item(1));
  for (const QPoint place : {row.center(), QPoint(row.left() + 12, row.center().y())}) {
    const bool before = ticked(1);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
    EXPECT_NE(ticked(1), before) << place.x();
  }
  EXPECT_FALSE(ticked(0));
}

TEST_F(BindingsTest, WhatChangesFasterThanAnybodyReadsIsRightInTheEnd) {
  owner_.values = {{"text", "start"}};
  show(control("QLabel", "label", property("bindText", "text")));
  for (int i = 0; i < 100; ++i) owner_.change("text", std::to_string(i));
  EXPECT_TRUE(QTest::qWaitFor([this] { return the<QLabel>("label").text() == "99"; }, 2000));
}

TEST_F(BindingsTest, MistakesInADescriptionCostALineEach) {
  owner_.values = {{"number", 1.0}};
  show(control("QLabel", "unknown", property("bindText", "nobody")) +
       control("QLabel", "path", property("bindText", "nobody.title")) +
       control("QCheckBox", "number", property("bindTicked", "number")) +
       control("QLabel", "picture", property("imageName", "missing")) +
       control("QLabel", "progress", property("bindProgress", "number")) +
       control("QLabel", "invented", property("bindSmell", "number")) +
       control("QLabel", "button", property("action", "nextView:")) +
       control("QPushButton", "unheard", property("action", "unheardOf:")) +
       control("QLabel", "setter", property("sets", "nobody")));
  the<QPushButton>("unheard").click();
  owner_.change("number", 2.0);
  for (const char* const name :
       {"unknown", "path", "number", "picture", "progress", "invented", "button", "unheard", "setter"}) {
    EXPECT_EQ(log_.count("control \"" + std::string(name) + "\""), 1) << name;
  }
}

TEST_F(BindingsTest, ExceptionsOfTheOwnerCostALineEach) {
  owner_.values = {{"text", "before"}};
  show(control("QLabel", "label", property("bindText", "text")) +
       control("QPushButton", "button", property("action", "fail:")));
  for (int i = 0; i < 2; ++i) the<QPushButton>("button").click();
  EXPECT_EQ(log_.count("control \"button\": failed"), 1);
  owner_.change("text", "after");
  EXPECT_EQ(the<QLabel>("label").text(), "after");
}

TEST_F(BindingsTest, WrappedTextsKeepNumbersToTheirWords) {
  const std::string wraps = R"(<property name="wordWrap"><bool>true</bool></property>)";
  owner_.values = {{"text", "Dunmore 3 of 2019 in 10 parts"}};
  show(control("QLabel", "wrapped", wraps + property("bindText", "text")) +
       control("QLabel", "line", property("bindText", "text")));
  EXPECT_EQ(the<QLabel>("wrapped").text(), "Dunmore\u00A03 of 2019 in\u00A010 parts");
  EXPECT_EQ(fromQt(the<QLabel>("line").text()), "Dunmore 3 of 2019 in 10 parts");
}

TEST_F(BindingsTest, NothingIsToldAnyMoreOnceTheInterfaceHasGone) {
  owner_.values = {{"text", "before"}};
  show(control("QPushButton", "go", property("action", "nextView:") + property("bindText", "text")));
  QWidget parent;
  the<QPushButton>("go").setParent(&parent);
  auto& button = *parent.findChild<QPushButton*>("go");
  interface_.reset();
  button.click();
  owner_.change("text", "after");
  EXPECT_EQ(owner_.done, "");
  EXPECT_EQ(button.text(), "before");
}

}  // namespace
