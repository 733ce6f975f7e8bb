// SPDX-License-Identifier: Apache-2.0

#include "support/RecordingAuthorizations.h"

#include <span>
#include <utility>

#include "platform/Transaction.h"

namespace {

/// A real transaction that follows a script.
class RecordingTransaction : public Transaction, private TransactionObserver {
 public:
  RecordingTransaction(std::unique_ptr<Transaction> real, TransactionScript& script)
      : real_(std::move(real)), script_(script) {}

  Status stage(std::span<const TransactionItem> items, TransactionObserver& observer) override {
    for (const TransactionItem& item : items) targets_.emplace_back(item.target);
    observer_ = &observer;
    return real_->stage(items, *this);
  }
  Status flush(TransactionObserver& observer) override {
    note("flush");
    const Status status = outcome("flush", "/");
    return status ? real_->flush(observer) : status;
  }
  std::vector<Status> commit(std::span<const std::size_t> items) override {
    std::string step = "commit";
    for (const std::size_t item : items) step += " " + std::to_string(item);
    note(step);
    std::vector<Status> results = real_->commit(items);
    for (std::size_t i = 0; i < items.size(); ++i) {
      const std::string& target = targets_[items[i]];
      results[i] = outcome("commit " + target, target, results[i]);
    }
    return results;
  }
  std::vector<Error> finish(TransactionObserver& observer) override {
    note("finish");
    staged_ = 0;
    std::vector<Error> left = real_->finish(observer);
    if (const Status status = outcome("finish", "/"); !status) left.push_back(status.error());
    return left;
  }

 private:
  void willStage(std::size_t item) override {
    note("stage " + targets_[item]);
    observer_->willStage(item);
  }
  bool didStage(std::size_t item, const ItemResult& result) override {
    const std::string& target = targets_[item];
    ItemResult changed{outcome("stage " + target, target, result.status),
                       outcome("attributes " + target, target, result.attributes)};
    if (staged_++ >= script_.roomForItems) changed.status = Error::posix(std::errc::no_space_on_device, target);
    return observer_->didStage(item, changed);
  }
  bool whileBusy(const CopiedAmount& copied) override { return observer_->whileBusy(copied); }

  void note(const std::string& step) {
    script_.before(step);
    script_.steps.push_back(step);
  }
  /// The script's error for the step, or else what really came of it.
  [[nodiscard]] Status outcome(const std::string& step, const std::string& path, const Status& real = {}) const {
    const auto fault = script_.faults.find(step);
    return fault == script_.faults.end() ? real : Error::posix(fault->second, path);
  }

  std::unique_ptr<Transaction> real_;
  TransactionScript& script_;
  TransactionObserver* observer_ = nullptr;
  std::vector<std::string> targets_;
  std::size_t staged_ = 0;
};

}  // namespace

class RecordingAuthorizations::Recording : public Authorization {
 public:
  explicit Recording(RecordingAuthorizations& owner) : owner_(owner), real_(owner.real_.createAuthorization()) {
    ++owner_.held;
  }
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;
  ~Recording() override { --owner_.held; }

  bool obtain(std::uint32_t flags) override { return owner_.canBeObtained && flags == extendRights; }
  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    owner_.beforeLaunch();
    std::string& launch = owner_.launches.emplace_back(toolPath);
    for (const std::string& argument : arguments) launch += "|" + argument;
    const auto status = owner_.statusOfTool.find(toolPath);
    if (status != owner_.statusOfTool.end()) return status->second;
    return real_->executeWithPrivileges(toolPath, arguments, pipe);
  }
  Result<std::unique_ptr<Transaction>> beginTransaction() override {
    owner_.beforeLaunch();
    if (owner_.statusOfTransactions != launchSucceeded) {
      return Error{.domain = std::string(authorizationErrorDomain), .code = owner_.statusOfTransactions};
    }
    auto begun = real_->beginTransaction();
    if (!begun) return begun.error();
    return std::unique_ptr<Transaction>(std::make_unique<RecordingTransaction>(std::move(*begun), owner_.transaction));
  }
  void waitForAnyChild() override { real_->waitForAnyChild(); }

 private:
  RecordingAuthorizations& owner_;
  std::unique_ptr<Authorization> real_;
};

std::unique_ptr<Authorization> RecordingAuthorizations::createAuthorization() {
  return std::make_unique<Recording>(*this);
}
