// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <chrono>
#include <utility>

#include "install/ItemInstallerObserver.h"

// Staging. The commit is in ItemInstallerCommit.cpp.

void ItemInstaller::install(const InstallPlan& plan) {
  staged_.clear();
  progress_ = {.planned = plan.totalSize(), .begun = std::chrono::steady_clock::now()};
  isOutOfRoom_ = std::ranges::any_of(
      plan.space(), [](const SpaceNeed& need) { return need.required > need.available && !need.mayShareBlocks; });
  isOneAtATime_ = false;
  if (!isOutOfRoom_ && stageAll(plan)) return commit();
  discard();
  if (!isInterrupted() && isOutOfRoom_ && hasRoomForLargest(plan)) installOneAtATime(plan);
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
    if (need.mayShareBlocks) continue;
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
    for (const Error& error : group.unreadable) fail(error.subject, error);
    if (!stage(membersOf(group))) return false;
  }
  return !isInterrupted();
}

bool ItemInstaller::stage(Members members) {
  Observer observer(*this, std::move(members));
  const auto items = observer.items();
  if (!items.empty()) {
    if (transaction_ == nullptr) observer.beginFirst();
    Status staged = begin();
    if (staged) staged = transaction_->stage(items, observer);
    const bool isStopped = tools_.isDenied() || (!staged && staged.error().is(std::errc::operation_canceled));
    if (!staged && !isStopped) failAll(observer.rest(), staged.error());
    if (!staged) return false;
  }
  observer.passOver();
  return true;
}

Status ItemInstaller::begin() {
  if (transaction_ != nullptr) return {};
  auto begun = tools_.beginTransaction();
  if (!begun) return begun.error();
  transaction_ = std::move(*begun);
  return {};
}

void ItemInstaller::installOneAtATime(const InstallPlan& plan) {
  isOneAtATime_ = true;
  report_.attributes.clear();
  for (const PlannedGroup& group : plan.groups()) {
    if (&group != &plan.groups().front() && listener_.hasFailed()) break;
    for (const Error& error : group.unreadable) fail(error.subject, error);
    for (const Member& member : membersOf(group)) {
      if (isInterrupted() || !stage({member})) return discard();
      commit();
      if (transaction_ == nullptr) continue;
      Observer observer(*this);
      if (const Status flushed = flush(); !flushed) {
        fail(flushed.error().subject, flushed.error());
        return discard();
      }
      for (const Error& error : transaction_->finish(observer)) report_.leftBehind.push_back({error.subject, error});
    }
  }
}

Status ItemInstaller::flush() {
  Observer observer(*this);
  return transaction_->flush(observer);
}

void ItemInstaller::fail(const std::string& path, const Error& reason) {
  const bool isKnown = std::ranges::find(report_.failures, path, &ReportedProblem::path) != report_.failures.end();
  if (!isKnown) listener_.itemFailed(path, reason);
}

void ItemInstaller::failAll(std::span<const Member> members, const Error& reason) {
  bool isFirst = true;
  for (const Member& member : members) {
    if (!member.item->isAttempted()) continue;
    if (std::exchange(isFirst, false)) {
      fail(member.item->target, reason);
    } else {
      report_.failures.push_back({member.item->target, reason});
    }
  }
}

bool ItemInstaller::isInterrupted() {
  using Moment = Interruption::Moment;
  if (!isStopWanted()) return false;
  const Moment moment = report_.installedPaths.empty() ? Moment::beforeChanges : Moment::betweenItems;
  const int signal = platform_.interruptions.requested().value_or(0);
  if (!report_.interruption) report_.interruption = {signal, moment};
  return true;
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
    progress_.enter(InstallProgress::Phase::cleaningUp, std::chrono::steady_clock::now());
    listener_.progressed(progress_);
    if (const Status flushed = flush(); !flushed) fail(flushed.error().subject, flushed.error());
    discard();
  }
  if (report_.shortage || report_.wasCutShort() || tools_.isDenied()) return;
  if (const auto signal = platform_.interruptions.requested()) {
    report_.interruption = {*signal, Interruption::Moment::tooLate};
  }
  progress_.enter(InstallProgress::Phase::done, std::chrono::steady_clock::now());
  listener_.progressed(progress_);
}
