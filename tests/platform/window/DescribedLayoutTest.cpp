// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "platform/window/DescribedLayout.h"

namespace {

TEST(DescribedLayoutTest, IsTurnedAroundForALanguageThatIsReadFromTheRight) {
  auto description = parseInterfaceFile(R"(<ui><widget class="QWidget" name="page">
      <property name="minimumSize"><size><width>640</width><height>400</height></size></property>
      <widget class="QLabel" name="steps">
        <property name="geometry"><rect><x>20</x><y>58</y><width>168</width><height>156</height></rect></property>
      </widget>
      <widget class="QWidget" name="content"><layout class="QHBoxLayout" name="row">
        <property name="leftMargin"><number>7</number></property>
        <item><widget class="QPushButton" name="first"/></item>
        <item><widget class="QPushButton" name="second"/></item>
      </layout></widget></widget></ui>)");
  ASSERT_TRUE(description);
  mirror(*description);
  const DescribedElement& page = description->children.at(0);
  EXPECT_EQ(placeOf(page.children.at(1)).origin.x, 640 - 20 - 168);
  EXPECT_EQ(placeOf(page.children.at(1)).origin.y, 58);
  const DescribedElement& row = page.children.at(2).children.at(0);
  EXPECT_EQ(row.children.at(0).children.at(0).attribute("name"), "second");
  EXPECT_EQ(row.children.at(1).children.at(0).attribute("name"), "first");
  EXPECT_EQ(row.numberOf("rightMargin", 0), 7);
  EXPECT_EQ(row.numberOf("leftMargin", 0), 0);
}

}  // namespace
