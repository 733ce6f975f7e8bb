#include "install/ItemInstaller.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/UpgradeRules.h"

/// Follows a transaction and passes on what happens in it.
class ItemInstaller::Observer : public TransactionObserver {
 public:
  explicit Observer(ItemInstaller& installer, Members members = {})
      : installer_(installer), members_(std::move(members)) {
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
    if (!error.is(std::errc::operation_canceled)) installer_.listener_.itemFailed(target, error);
    return true;
  }

  bool whileBusy(const CopiedAmount& copied) override {
    installer_.progress_.copied = copied;
    installer_.listener_.progressed(installer_.progress_);
    return !installer_.platform_.interruptions.requested();
  }

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

void ItemInstaller::install(const InstallPlan& plan) {
  staged_.clear();
  progress_ = {.planned = plan.totalSize()};
  isOutOfRoom_ = std::ranges::any_of(
      plan.space(), [](const SpaceNeed& need) { return need.required > need.available && !need.mayShareBlocks; });
  isOneAtATime_ = false;
  if (!isOutOfRoom_ && stageAll(plan)) return commit();
  discard();
  if (isOutOfRoom_ && !isInterrupted() && hasRoomForLargest(plan)) installOneAtATime(plan);
}

ItemInstaller::Members ItemInstaller::membersOf(const PlannedGroup& group) {
  Members members;
  for (const PlannedBatch& batch : group.batches) {
    for (const PlannedItem& item : batch.items) {
      members.push_back({.item = &item, .batch = &batch, .host = group.host ? *group.host + 1 : 0});
    }
  }
  return members;
}

bool ItemInstaller::hasRoomForLargest(const InstallPlan& plan) {
  for (const SpaceNeed& need : plan.space()) {
    const auto space = platform_.files.spaceFor(need.path);
    const std::uint64_t available = space ? space->available : need.available;
    if (need.largest <= available) continue;
    report_.shortage = {need.largest, available};
    return false;
  }
  return true;
}

bool ItemInstaller::stageAll(const InstallPlan& plan) {
  for (const PlannedGroup& group : plan.groups()) {
    if (&group != &plan.groups().front() && listener_.hasFailed()) break;
    for (const Error& error : group.unreadable) listener_.itemFailed(error.subject, error);
    if (!stage(membersOf(group))) return false;
  }
  return !isInterrupted();
}

bool ItemInstaller::stage(Members members) {
  Observer observer(*this, std::move(members));
  const auto items = observer.items();
  if (!items.empty()) {
    if (transaction_ == nullptr) observer.beginFirst();
    const std::string first(items.front().target);
    if (!begin(first)) return false;
    const Status staged = transaction_->stage(items, observer);
    const bool isStopped = !staged && staged.error().is(std::errc::operation_canceled);
    if (!staged && !isStopped) listener_.itemFailed(first, staged.error());
    if (!staged) return false;
  }
  observer.passOver();
  return true;
}

bool ItemInstaller::begin(const std::string& firstTarget) {
  if (transaction_ != nullptr) return true;
  auto begun = tools_.beginTransaction();
  if (begun) {
    transaction_ = std::move(*begun);
  } else if (!tools_.isDenied()) {
    listener_.itemFailed(firstTarget, begun.error());
  }
  return transaction_ != nullptr;
}

void ItemInstaller::commit() {
  if (transaction_ == nullptr) return;
  if (!flush() || isInterrupted()) return discard();
  const Members wanted = stillWanted();
  std::vector<std::size_t> numbers;
  for (const Member& member : wanted) numbers.push_back(member.number);
  std::vector<Status> results = transaction_->commit(numbers);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const bool isNotSeen = !results[i] && results[i].error().is(std::errc::no_such_file_or_directory);
    if (isNotSeen && appearsInTime(*wanted[i].item)) results[i] = {};
    if (!results[i]) continue;
    report_.installedPaths.push_back(wanted[i].item->target);
    report_.hostsOfPaths.push_back(wanted[i].host);
  }
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (!results[i]) listener_.itemFailed(wanted[i].item->target, results[i].error());
  }
  staged_.clear();
}

bool ItemInstaller::appearsInTime(const PlannedItem& item) {
  constexpr int maxChecks = 32;
  for (int checked = 0; checked < maxChecks; ++checked) {
    if (platform_.files.isTaken(item.target)) {
      platform_.log.write(formatted("Took a delay to verify file %@", lastPathComponent(item.source)));
      return true;
    }
    platform_.clock.sleepFor(std::chrono::microseconds(125));
  }
  return false;
}

ItemInstaller::Members ItemInstaller::stillWanted() const {
  Members wanted;
  const PlannedBatch* batch = nullptr;
  bool copiesNewFiles = true;
  for (const Member& member : staged_) {
    if (std::exchange(batch, member.batch) != member.batch) copiesNewFiles = true;
    const PlannedItem& item = *member.item;
    if (!member.batch->alwaysInstall && platform_.files.isTaken(item.target)) {
      copiesNewFiles = member.batch->isBundle
                           ? isFileOkToInstallByBundleVersion(platform_, item.source, item.target)
                           : isFileOkToInstallByModificationTime(platform_, item.source, item.target);
    }
    if (copiesNewFiles) wanted.push_back(member);
  }
  return wanted;
}

void ItemInstaller::installOneAtATime(const InstallPlan& plan) {
  isOneAtATime_ = true;
  for (const PlannedGroup& group : plan.groups()) {
    if (&group != &plan.groups().front() && listener_.hasFailed()) break;
    for (const Error& error : group.unreadable) listener_.itemFailed(error.subject, error);
    for (const Member& member : membersOf(group)) {
      if (!stage({member}) || isInterrupted()) return discard();
      commit();
      if (transaction_ == nullptr) continue;
      Observer observer(*this);
      if (!flush()) return discard();
      for (const Error& error : transaction_->finish(observer)) report_.leftBehind.push_back({error.subject, error});
    }
  }
}

bool ItemInstaller::flush() {
  Observer observer(*this);
  const Status flushed = transaction_->flush(observer);
  if (!flushed) listener_.itemFailed(flushed.error().subject, flushed.error());
  return static_cast<bool>(flushed);
}

bool ItemInstaller::isInterrupted() {
  const auto signal = platform_.interruptions.requested();
  if (signal && !report_.interruption) report_.interruption = {*signal, report_.installedPaths.empty()};
  return signal.has_value();
}

void ItemInstaller::discard() {
  staged_.clear();
  numbered_ = 0;
  if (transaction_ == nullptr) return;
  Observer observer(*this);
  for (const Error& error : transaction_->finish(observer)) report_.leftBehind.push_back({error.subject, error});
  transaction_.reset();
}

void ItemInstaller::finish() {
  if (transaction_ != nullptr) {
    progress_.phase = InstallProgress::Phase::flushing;
    listener_.progressed(progress_);
    static_cast<void>(flush());
    progress_.phase = InstallProgress::Phase::cleaningUp;
    discard();
  }
  static_cast<void>(isInterrupted());  // too late to stop; the report tells
  progress_.phase = InstallProgress::Phase::done;
  listener_.progressed(progress_);
}
