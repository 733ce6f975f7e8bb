// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "platform/Transaction.h"
#include "platform/rights/HelperConnection.h"

/// A transaction that the helper carries out. A helper that has gone fails every step, with broken_pipe.
class HelperTransaction : public Transaction {
 public:
  /// Begins it with the open lock of the volume.
  static Result<std::unique_ptr<Transaction>> begin(std::shared_ptr<HelperConnection> helper, int lock);
  ~HelperTransaction() override;

  Status stage(std::span<const TransactionItem> items, TransactionObserver& observer) override;
  Status flush(TransactionObserver& observer) override;
  std::vector<Status> commit(std::span<const std::size_t> items) override;
  std::vector<Error> finish(TransactionObserver& observer) override;

 private:
  class Staging;

  /// Waits for the answer, and tells the observer meanwhile.
  [[nodiscard]] Packet ask(std::string_view step, TransactionObserver& observer);

  explicit HelperTransaction(std::shared_ptr<HelperConnection> helper) : helper_(std::move(helper)) {}

  std::shared_ptr<HelperConnection> helper_;
  std::size_t staged_ = 0;
  CopiedAmount copied_;
};
