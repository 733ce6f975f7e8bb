// SPDX-License-Identifier: Apache-2.0

#include "platform/window/BoxLayout.h"

#include <algorithm>
#include <numeric>

std::vector<LayoutItem*> BoxLayout::shown() const {
  std::vector<LayoutItem*> items;
  for (const auto& item : items_) {
    if (!item->isHidden()) items.push_back(item.get());
  }
  return items;
}

std::vector<double> BoxLayout::share(const std::vector<LayoutItem*>& items, Size room) const {
  std::vector<double> lengths;
  std::vector<double> shortest;
  std::vector<std::size_t> growing;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Size wanted = items[i]->sizeFor(isRow() ? anyWidth : room.width);
    const Size smallest = items[i]->smallest();
    lengths.push_back(isRow() ? wanted.width : wanted.height);
    shortest.push_back(std::min(lengths.back(), isRow() ? smallest.width : smallest.height));
    if (isRow() ? items[i]->growsAcross() : items[i]->growsDown()) growing.push_back(i);
  }
  const double between = items.empty() ? 0 : spacing_ * static_cast<double>(items.size() - 1);
  const double wanted = std::accumulate(lengths.begin(), lengths.end(), between);
  const double left = (isRow() ? room.width : room.height) - wanted;
  if (left >= 0) {
    for (const std::size_t i : growing) lengths[i] += left / static_cast<double>(growing.size());
    return lengths;
  }
  // Whoever can do with less gives, in proportion.
  const double most = wanted - std::accumulate(shortest.begin(), shortest.end(), between);
  const double part = most > 0 ? std::min(1.0, -left / most) : 0;
  for (std::size_t i = 0; i < lengths.size(); ++i) lengths[i] -= (lengths[i] - shortest[i]) * part;
  return lengths;
}

Size BoxLayout::sizeFor(double width) const {
  const auto items = shown();
  const double inner = width - margins_.left - margins_.right;
  Size size;
  if (isRow()) {
    const bool isFree = width >= anyWidth;
    const std::vector<double> widths = share(items, {.width = isFree ? 0 : inner, .height = 0});
    for (std::size_t i = 0; i < items.size(); ++i) {
      const Size wanted = items[i]->sizeFor(isFree ? anyWidth : widths[i]);
      size.width += isFree ? wanted.width : widths[i];
      size.height = std::max(size.height, wanted.height);
    }
  } else {
    for (const LayoutItem* const item : items) {
      const Size wanted = item->sizeFor(inner);
      size.height += wanted.height;
      size.width = std::max(size.width, wanted.width);
    }
  }
  const double between = items.empty() ? 0 : spacing_ * static_cast<double>(items.size() - 1);
  (isRow() ? size.width : size.height) += between;
  return {.width = size.width + margins_.left + margins_.right, .height = size.height + margins_.top + margins_.bottom};
}

bool BoxLayout::growsAcross() const {
  return std::ranges::any_of(shown(), [](const LayoutItem* item) { return item->growsAcross(); });
}

bool BoxLayout::growsDown() const {
  return std::ranges::any_of(shown(), [](const LayoutItem* item) { return item->growsDown(); });
}

void BoxLayout::place(const Rect& rect) {
  const auto items = shown();
  const Size room{.width = rect.size.width - margins_.left - margins_.right,
                  .height = rect.size.height - margins_.top - margins_.bottom};
  const std::vector<double> lengths = share(items, room);
  Point at{.x = rect.origin.x + margins_.left, .y = rect.origin.y + margins_.top};
  for (std::size_t i = 0; i < items.size(); ++i) {
    const Size size =
        isRow() ? Size{.width = lengths[i], .height = room.height} : Size{.width = room.width, .height = lengths[i]};
    items[i]->place({.origin = at, .size = size});
    (isRow() ? at.x : at.y) += lengths[i] + spacing_;
  }
}
