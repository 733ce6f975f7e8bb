// SPDX-License-Identifier: Apache-2.0

#include "platform/window/DescribedLayout.h"

#include <algorithm>
#include <cstdlib>

namespace {

void turnMargin(DescribedElement& property) {
  std::string& name = property.attributes["name"];
  if (name == "leftMargin") {
    name = "rightMargin";
  } else if (name == "rightMargin") {
    name = "leftMargin";
  }
}

/// Gives the widget the place at the other side of what holds it, if it has one of its own.
void turnPlace(DescribedElement& widget, double width) {
  const Rect place = placeOf(widget);
  for (DescribedElement& property : widget.children) {
    if (property.name != "property" || property.attribute("name") != "geometry") continue;
    for (DescribedElement& rect : property.children) {
      for (DescribedElement& part : rect.children) {
        if (part.name == "x") part.text = std::to_string(width - place.origin.x - place.size.width);
      }
    }
  }
}

void mirrorInside(DescribedElement& element, double width) {
  const bool isWidget = element.name == "widget";
  if (isWidget)
    width = element.sizeOf("geometry")
                .value_or(element.sizeOf("minimumSize").value_or(Size{.width = width, .height = 0}))
                .width;
  if (element.attribute("class") == "QHBoxLayout") std::ranges::reverse(element.children);
  for (DescribedElement& child : element.children) {
    if (element.name == "layout" && child.name == "property") turnMargin(child);
    if (isWidget && child.name == "widget") turnPlace(child, width);
    mirrorInside(child, width);
  }
}

bool growsByNature(const std::string& kind) { return kind == "QTextEdit" || kind == "QListWidget"; }

}  // namespace

Size larger(const Size& one, const Size& other) {
  return {.width = std::max(one.width, other.width), .height = std::max(one.height, other.height)};
}

Size smaller(const Size& one, const Size& other) {
  return {.width = std::min(one.width, other.width), .height = std::min(one.height, other.height)};
}

Limits limitsOf(const DescribedElement& widget, const std::string& alignment) {
  const std::string kind = widget.attribute("class");
  Limits limits;
  limits.smallest = widget.sizeOf("minimumSize").value_or(Size{});
  limits.largest = widget.sizeOf("maximumSize").value_or(limits.largest);
  const DescribedElement* const policy = widget.property("sizePolicy");
  const std::string across = policy != nullptr ? policy->attribute("hsizetype") : "";
  const std::string down = policy != nullptr ? policy->attribute("vsizetype") : "";
  limits.growsAcross = growsByNature(kind) || kind == "QLineEdit" || kind == "QProgressBar" || across == "Expanding";
  limits.growsDown = growsByNature(kind) || down == "Expanding";
  limits.isIgnored = across == "Ignored";
  limits.isAtTop = alignment.find("AlignTop") != std::string::npos;
  return limits;
}

std::unique_ptr<BoxLayout> layoutOf(const DescribedElement& layout) {
  using Direction = BoxLayout::Direction;
  const Direction direction = layout.attribute("class") == "QHBoxLayout" ? Direction::row : Direction::column;
  return std::make_unique<BoxLayout>(direction, layout.numberOf("spacing", 6),
                                     BoxLayout::Margins{.left = layout.numberOf("leftMargin", 0),
                                                        .top = layout.numberOf("topMargin", 0),
                                                        .right = layout.numberOf("rightMargin", 0),
                                                        .bottom = layout.numberOf("bottomMargin", 0)});
}

std::unique_ptr<LayoutItem> spaceOf(const DescribedElement& spacer) {
  const bool isFixed = spacer.textOf("sizeType") == "QSizePolicy::Fixed";
  const bool isAcross = spacer.textOf("orientation") == "Qt::Horizontal";
  const Size size = spacer.sizeOf("sizeHint").value_or(Size{});
  return std::make_unique<SpaceItem>(
      isAcross ? Size{.width = size.width, .height = 0} : Size{.width = 0, .height = size.height}, isAcross && !isFixed,
      !isAcross && !isFixed);
}

void mirror(DescribedElement& description) { mirrorInside(description, 0); }

Rect placeOf(const DescribedElement& widget) {
  const DescribedElement* const rect = widget.property("geometry");
  const auto number = [&](const char* part) {
    const DescribedElement* const found = rect != nullptr ? rect->child(part) : nullptr;
    return found != nullptr ? std::atof(found->text.c_str()) : 0;
  };
  return {.origin = {.x = number("x"), .y = number("y")}, .size = widget.sizeOf("geometry").value_or(Size{})};
}
