// SPDX-License-Identifier: Apache-2.0

#include "tool/Remover.h"

#include <algorithm>
#include <utility>

#include "foundation/Path.h"
#include "install/tasks/InstalledPathsLog.h"

/// Notes what can be removed.
class Remover::Observer : public TransactionObserver {
 public:
  Observer(Remover& remover, const std::vector<std::string>& paths) : remover_(remover), paths_(paths) {}

  void willStage(std::size_t /*number*/) override {}

  bool didStage(std::size_t number, const ItemResult& result) override {
    const std::string& path = paths_[next_++];
    remover_.numbered_ = number + 1;
    if (result.status) {
      remover_.staged_.push_back({path, number});
    } else if (remover_.tools_.noteRefusal(result.status.error())) {
      return false;
    } else if (!result.status.error().is(std::errc::no_such_file_or_directory)) {  // it went by itself
      remover_.outcome_.kept.push_back({path, KeptPath::Reason::failed, result.status.error().reason()});
    }
    return true;
  }

  bool whileBusy(const CopiedAmount& /*copied*/) override { return !remover_.platform_.interruptions.requested(); }

 private:
  Remover& remover_;
  const std::vector<std::string>& paths_;
  std::size_t next_ = 0;
};

Status Remover::begin() {
  auto begun = tools_.beginTransaction();
  if (!begun) return begun.error();
  transaction_ = std::move(*begun);
  return {};
}

RemovalOutcome Remover::remove(const RemovalPlan& plan) {
  outcome_ = {.kept = plan.kept, .isBegun = true};
  Observer observer(*this, plan.removed);
  const bool isStaged = stage(plan.removed);
  const Status flushed = isStaged ? transaction_->flush(observer) : Status();
  if (!flushed) outcome_.problem = flushed.error();
  if (isStaged && flushed) {
    commit();
    for (const auto& [path, identifier] : plan.applications) {
      if (!platform_.files.isTaken(path)) platform_.launchServices.forgetApplication(path, identifier);
    }
    bringLogUpToDate(plan);
    // What could not be flushed is as it was, or gone; which of them, the next look tells.
    static_cast<void>(transaction_->flush(observer));
  }
  for (const Error& left : transaction_->finish(observer)) {
    outcome_.kept.push_back({left.subject, KeptPath::Reason::failed, left.reason()});
  }
  transaction_.reset();
  outcome_.isDenied = tools_.isDenied();
  return std::move(outcome_);
}

bool Remover::stage(const std::vector<std::string>& paths) {
  std::vector<TransactionItem> items;
  for (const std::string& path : paths) items.push_back({.source = {}, .target = path});
  Observer observer(*this, paths);
  const Status staged = items.empty() ? Status() : transaction_->stage(items, observer);
  outcome_.isInterrupted = platform_.interruptions.requested().has_value();
  if (!staged && !outcome_.isInterrupted && !tools_.isDenied()) outcome_.problem = staged.error();
  return staged && !outcome_.isInterrupted;
}

void Remover::commit() {
  std::vector<std::size_t> numbers;
  for (const Member& member : staged_) numbers.push_back(member.number);
  const std::vector<Status> results = transaction_->commit(numbers);
  for (std::size_t i = 0; i < staged_.size(); ++i) {
    if (results[i]) {
      outcome_.removed.push_back(staged_[i].path);
    } else {
      outcome_.kept.push_back({staged_[i].path, KeptPath::Reason::failed, results[i].error().reason()});
    }
  }
  staged_.clear();
}

/// The log goes when nothing of what it listed is left, and lists what is left otherwise.
void Remover::bringLogUpToDate(const RemovalPlan& plan) {
  std::vector<std::string> lines;
  for (const std::string& line : plan.logged) {
    const bool isKept = std::ranges::find(plan.stillLogged, line) != plan.stillLogged.end();
    const bool hasFailed = std::ranges::any_of(outcome_.kept, [&](const KeptPath& kept) {
      return kept.reason == KeptPath::Reason::failed && (isAtOrBelow(line, kept.path) || isAtOrBelow(kept.path, line));
    });
    if (isKept || hasFailed) lines.push_back(line);
  }
  if (!lines.empty()) {
    outcome_.isLogLeft = !logInstalledPaths(platform_, tools_, lines);
    return;
  }
  const std::vector<std::string> log = {withEmptiedFolders(platform_, plan.log)};
  if (stage(log)) commit();
  outcome_.isLogLeft = platform_.files.isTaken(plan.log);
}
