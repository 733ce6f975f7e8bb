// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <vector>

#include "platform/Toolkit.h"

/// Something that has a place in a layout. Places are counted from the upper left corner of what holds the layout.
class LayoutItem {
 public:
  /// A width for what may be as wide as it wants to.
  static constexpr double anyWidth = 16777215;

  LayoutItem() = default;
  LayoutItem(const LayoutItem&) = delete;
  LayoutItem& operator=(const LayoutItem&) = delete;
  virtual ~LayoutItem() = default;

  /// Takes no place.
  [[nodiscard]] virtual bool isHidden() const { return false; }
  /// The size that it needs when it is given that much width.
  [[nodiscard]] virtual Size sizeFor(double width) const = 0;
  /// The smallest size that it can do with.
  [[nodiscard]] virtual Size smallest() const { return sizeFor(anyWidth); }
  /// Takes the room that is left, across or down.
  [[nodiscard]] virtual bool growsAcross() const { return false; }
  [[nodiscard]] virtual bool growsDown() const { return false; }
  virtual void place(const Rect& rect) = 0;
};

/// Room that nothing lies in.
class SpaceItem : public LayoutItem {
 public:
  SpaceItem(Size size, bool growsAcross, bool growsDown)
      : size_(size), growsAcross_(growsAcross), growsDown_(growsDown) {}

  [[nodiscard]] Size sizeFor(double /*width*/) const override { return size_; }
  [[nodiscard]] Size smallest() const override {
    return {.width = growsAcross_ ? 0 : size_.width, .height = growsDown_ ? 0 : size_.height};
  }
  [[nodiscard]] bool growsAcross() const override { return growsAcross_; }
  [[nodiscard]] bool growsDown() const override { return growsDown_; }
  void place(const Rect& /*rect*/) override {}

 private:
  Size size_;
  bool growsAcross_;
  bool growsDown_;
};

/// Items one after the other, with the room that is left shared by those that grow. Across, every item has all of it.
class BoxLayout : public LayoutItem {
 public:
  enum class Direction { row, column };
  struct Margins {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
  };

  BoxLayout(Direction direction, double spacing, const Margins& margins)
      : direction_(direction), spacing_(spacing), margins_(margins) {}

  void add(std::unique_ptr<LayoutItem> item) { items_.push_back(std::move(item)); }

  [[nodiscard]] bool isHidden() const override { return shown().empty(); }
  [[nodiscard]] Size sizeFor(double width) const override;
  [[nodiscard]] bool growsAcross() const override;
  [[nodiscard]] bool growsDown() const override;
  void place(const Rect& rect) override;

 private:
  [[nodiscard]] bool isRow() const { return direction_ == Direction::row; }
  [[nodiscard]] std::vector<LayoutItem*> shown() const;
  /// How long each of the items is, when all of them together have that much room.
  [[nodiscard]] std::vector<double> share(const std::vector<LayoutItem*>& items, Size room) const;

  Direction direction_;
  double spacing_;
  Margins margins_;
  std::vector<std::unique_ptr<LayoutItem>> items_;
};
