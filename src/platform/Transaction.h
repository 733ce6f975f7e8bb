// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "foundation/Result.h"

/// One change of a transaction. The texts live at least as long as the call that they are given to.
struct TransactionItem {
  std::string_view source;       ///< an item of the installer's bundle; empty to remove what is at `target`
  std::string_view target;       ///< on the target volume
  bool losesQuarantine = false;  ///< whether the download-quarantine mark is left out of the copy
};

/// Result of one step for an item.
struct ItemResult {
  Status status;           ///< the error's text names the path; authorizationErrorDomain when rights are not available
  Status attributes = {};  ///< the first owner, mode or time that could not be set
};

/// Amount copied since the transaction began.
struct CopiedAmount {
  std::uint64_t bytes = 0;  ///< of content
  std::uint64_t files = 0;
};

/// Observes a transaction on the calling thread. Must not change the transaction.
class TransactionObserver {
 public:
  TransactionObserver() = default;
  TransactionObserver(const TransactionObserver&) = delete;
  TransactionObserver& operator=(const TransactionObserver&) = delete;
  virtual ~TransactionObserver() = default;

  /// Called for each item in order. Copying may be ahead of it.
  virtual void willStage(std::size_t item) = 0;
  /// Called when the item is staged or has failed. Return false to stop.
  [[nodiscard]] virtual bool didStage(std::size_t item, const ItemResult& result) = 0;
  /// Called every few hundredths of a second while a step takes longer than that. Return false to stop staging; other
  /// steps go on.
  [[nodiscard]] virtual bool whileBusy(const CopiedAmount& copied) = 0;
};

/// Changes items of the target volume so that each is complete at all times, old or new, whatever happens to this
/// process or to the machine. The order of calls is stage() as often as needed, flush(), commit(), flush(), finish().
///
/// A staged item is a complete copy in a hidden folder on the file system of its place, with the final owner (the
/// logged-in user, group admin), mode (0775) and modification times. Nothing that people can see changes before
/// commit(). What an interrupted transaction leaves is undone or removed when the next one begins on the same volume.
class Transaction {
 public:
  Transaction() = default;
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Calls finish() and ignores what stays behind.
  virtual ~Transaction() = default;

  /// Stages the items in order. Their numbers go on from the previous call, beginning with 0. An item that fails leaves
  /// nothing staged, and the others go on. Fails when the observer stops it (operation_canceled) or when nothing more
  /// can be staged.
  virtual Status stage(std::span<const TransactionItem> items, TransactionObserver& observer) = 0;

  /// Writes what was done so far to the medium.
  virtual Status flush(TransactionObserver& observer) = 0;

  /// Gives the staged items with these numbers their places, one after the other, with nothing in between. Creates
  /// missing folders (0775 for the folder of an item and the one above it). Each step is atomic where the file system
  /// can exchange two names; elsewhere the old item is set aside first, and comes back when the second step fails.
  /// Returns a result for each number, after a look at the disk. An item that was not staged fails; one that got its
  /// place but cannot be seen there yet fails with resource_unavailable_try_again.
  virtual std::vector<Status> commit(std::span<const std::size_t> items) = 0;

  /// Removes the old versions of committed items and all that was not committed. After a flush that failed, the old
  /// versions stay where they are hidden. Returns an error for everything that
  /// stays behind in a hidden folder; the next transaction on the volume tries again. The transaction can be used
  /// again.
  virtual std::vector<Error> finish(TransactionObserver& observer) = 0;
};
