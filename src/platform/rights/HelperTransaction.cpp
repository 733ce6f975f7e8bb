// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperTransaction.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace {

/// The signal comes before the results.
constexpr std::size_t firstResult = 1;
constexpr int observedEvery = 30;       // milliseconds
constexpr std::size_t maxItems = 1000;  // of a request

/// How many of the items, one at least, one request to stage has room for.
std::size_t countForOneRequest(std::span<const TransactionItem> items) {
  constexpr std::size_t room = maxPacketBytes / 2;
  std::size_t count = 0;
  std::size_t bytes = 0;
  while (count < std::min(items.size(), maxItems)) {
    bytes += items[count].source.size() + items[count].target.size();
    if (bytes > room) break;
    ++count;
  }
  return std::max<std::size_t>(count, 1);
}

Status resultOf(const Packet& reply) {
  std::size_t position = firstResult;
  return takeResult(reply, position);
}

}  // namespace

/// Receives what the helper says while items are staged.
class HelperTransaction::Staging {
 public:
  Staging(HelperConnection& helper, CopiedAmount& copied) : helper_(helper), copied_(copied) {}

  /// Waits until the item is staged. Returns nothing when staging ends before that.
  std::optional<ItemResult> waitFor(std::size_t item, TransactionObserver& observer) {
    while (!results_.contains(item)) {
      if (end_ || isStopped_ || helper_.isGone()) return std::nullopt;
      if (const auto packet = helper_.receive(observedEvery)) read(*packet);
      if (!observer.whileBusy(copied_)) stop();
    }
    return std::move(results_.extract(item).mapped());
  }

  void stop() {
    if (!std::exchange(isStopped_, true)) static_cast<void>(helper_.send({std::string(InstallerSays::stop)}));
  }

  /// Waits for the end of staging.
  Status finish() {
    while (!end_ && !helper_.isGone()) {
      if (const auto packet = helper_.receive()) read(*packet);
    }
    if (!end_) return Error::posix(std::errc::broken_pipe, "");
    // The helper may have been faster than the request to stop.
    return isStopped_ ? Error::posix(std::errc::operation_canceled, "") : *end_;
  }

 private:
  void read(const Packet& packet) {
    std::size_t position = 0;
    if (packet.name != HelperSays::progress) {
      end_ = resultOf(packet);
      return;
    }
    copied_.bytes = takeNumber(packet, position);
    copied_.files = takeNumber(packet, position);
    while (position < packet.texts.size()) {
      const auto item = static_cast<std::size_t>(takeNumber(packet, position));
      Status status = takeResult(packet, position);
      results_.insert_or_assign(item, ItemResult{std::move(status), takeResult(packet, position)});
    }
  }

  HelperConnection& helper_;
  CopiedAmount& copied_;
  std::map<std::size_t, ItemResult> results_;
  std::optional<Status> end_;
  bool isStopped_ = false;
};

Result<std::unique_ptr<Transaction>> HelperTransaction::begin(std::shared_ptr<HelperConnection> helper, int lock) {
  const Packet reply = helper->ask({std::string(InstallerSays::begin)}, lock);
  if (Status begun = resultOf(reply); !begun) return begun.error();
  return std::unique_ptr<Transaction>(new HelperTransaction(std::move(helper)));
}

HelperTransaction::~HelperTransaction() {
  static_cast<void>(helper_->ask({std::string(InstallerSays::finish)}));  // the next transaction tries again
}

Status HelperTransaction::stage(std::span<const TransactionItem> items, TransactionObserver& observer) {
  while (!items.empty()) {
    const auto some = items.first(countForOneRequest(items));
    items = items.subspan(some.size());
    Packet packet{std::string(InstallerSays::stage)};
    for (const auto& [source, target, losesQuarantine] : some) {
      for (const std::string_view text : {source, target, std::string_view(losesQuarantine ? "q" : "")}) {
        packet.texts.emplace_back(text);
      }
    }
    if (!helper_->send(packet)) return Error::posix(std::errc::broken_pipe, "");
    Staging staging(*helper_, copied_);
    for (std::size_t i = 0; i < some.size(); ++i) {
      observer.willStage(staged_ + i);
      const auto result = staging.waitFor(staged_ + i, observer);
      if (result && observer.didStage(staged_ + i, *result)) continue;
      if (result) staging.stop();
      break;
    }
    staged_ += some.size();
    if (Status staged = staging.finish(); !staged) return staged;
  }
  return {};
}

Packet HelperTransaction::ask(std::string_view step, TransactionObserver& observer) {
  if (!helper_->send({std::string(step)})) return {};
  for (;;) {
    if (auto packet = helper_->receive(observedEvery)) return std::move(*packet);
    if (helper_->isGone()) return {};
    static_cast<void>(observer.whileBusy(copied_));
  }
}

Status HelperTransaction::flush(TransactionObserver& observer) { return resultOf(ask(InstallerSays::flush, observer)); }

std::vector<Status> HelperTransaction::commit(std::span<const std::size_t> items) {
  std::vector<Status> results;
  while (results.size() < items.size()) {
    const auto some = items.subspan(results.size(), std::min(items.size() - results.size(), maxItems));
    Packet packet{std::string(InstallerSays::commit)};
    for (const std::size_t item : some) packet.texts.push_back(std::to_string(item));
    const Packet reply = helper_->ask(packet);
    std::size_t position = firstResult;
    for (std::size_t i = 0; i < some.size(); ++i) results.push_back(takeResult(reply, position));
  }
  return results;
}

std::vector<Error> HelperTransaction::finish(TransactionObserver& observer) {
  const Packet reply = ask(InstallerSays::finish, observer);
  std::vector<Error> left;
  for (std::size_t position = firstResult; position < reply.texts.size();) {
    if (const Status result = takeResult(reply, position); !result) left.push_back(result.error());
  }
  return left;
}
