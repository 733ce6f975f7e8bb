// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "install/ItemInstaller.h"

/// Follows a transaction and passes on what happens in it.
class ItemInstaller::Observer : public TransactionObserver {
 public:
  explicit Observer(ItemInstaller& installer, Members members = {})
      : installer_(installer), members_(std::move(members)) {
    installer_.staged_.reserve(installer_.staged_.size() + members_.size());
    for (Member& member : members_) {
      if (member.item->isAttempted()) member.number = installer_.numbered_++;
    }
  }

  [[nodiscard]] std::vector<TransactionItem> items() const {
    std::vector<TransactionItem> items;
    for (const Member& member : members_) {
      const PlannedItem& item = *member.item;
      if (item.isAttempted()) items.push_back({item.source, item.target, /*losesQuarantine=*/item.isRegistered});
    }
    return items;
  }

  /// Tells of the first item that is attempted, before people are asked for a password for it.
  void beginFirst() {
    passOver();
    begin(next_);
    hasBegun_ = true;
  }

  void willStage(std::size_t /*number*/) override {
    if (std::exchange(hasBegun_, false)) return;
    passOver();
    begin(next_);
  }

  bool didStage(std::size_t /*number*/, const ItemResult& result) override {
    const Member& member = members_[next_++];
    const std::string& target = member.item->target;
    if (!result.attributes) installer_.report_.attributes.push_back({target, result.attributes.error()});
    if (result.status) {
      installer_.staged_.push_back(member);
      return true;
    }
    const Error& error = result.status.error();
    if (installer_.tools_.noteRefusal(error)) return false;
    if (error.is(std::errc::no_space_on_device) && !installer_.isOneAtATime_) {
      installer_.isOutOfRoom_ = true;
      return false;
    }
    if (!error.is(std::errc::operation_canceled)) installer_.fail(target, error);
    return true;
  }

  bool whileBusy(const CopiedAmount& copied) override {
    installer_.progress_.copied = copied;
    installer_.listener_.progressed(installer_.progress_);
    return !installer_.isStopWanted();
  }

  /// The items whose turn has not ended.
  [[nodiscard]] std::span<const Member> rest() const { return std::span<const Member>(members_).subspan(next_); }

  /// Tells of the items up to the next one that is attempted.
  void passOver() {
    while (next_ < members_.size() && !members_[next_].item->isAttempted()) begin(next_++);
  }

 private:
  void begin(std::size_t position) { installer_.listener_.itemBegins(*members_[position].item); }

  ItemInstaller& installer_;
  Members members_;
  std::size_t next_ = 0;
  bool hasBegun_ = false;
};
