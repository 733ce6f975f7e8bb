// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Transaction.h"
#include "platform/files/CopyPool.h"
#include "platform/files/StagingArea.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TargetFolder.h"

/// A transaction that this process carries out, on open folders only: paths are resolved once for staging and once for
/// the commit, from the root of the volume, and nothing is followed after that.
class StagedTransaction : public Transaction {
 public:
  /// Undoes or removes what an interrupted transaction left. The caller holds the lock of the volume as long as the
  /// result lives.
  static Result<std::unique_ptr<Transaction>> begin(const Volume& volume, Elevation& elevation,
                                                    const Ownership& ownership, CopyPool::Caller caller);
  ~StagedTransaction() override;

  Status stage(std::span<const TransactionItem> items, TransactionObserver& observer) override;
  Status flush(TransactionObserver& observer) override;
  std::vector<Status> commit(std::span<const std::size_t> items) override;
  std::vector<Error> finish(TransactionObserver& observer) override;

 private:
  /// Items that go to one folder of the volume.
  struct Folder {
    std::string target;
    std::size_t area = 0;
    bool isMissing = false;  ///< whether the target was missing when the first item was staged, and still is
    bool isMoved = false;    ///< whether the folder was moved to its target as a whole
    bool inheritsOwnership = false;
    bool isClean = true;                                      ///< whether nothing but staged items is in it
    std::size_t staged = 0;                                   ///< how many items wait here
    std::map<std::string_view, std::size_t> itemOfName = {};  ///< names are those of items_
  };
  struct Item {
    enum class State : std::uint8_t { failed, staged, committed };
    std::string name = {};
    std::size_t source = 0;  ///< hash of its path
    State state = State::failed;
    bool isRemoval = false;
    std::size_t folder = 0;
    std::optional<std::size_t> sameAs = std::nullopt;  ///< an earlier item with the same source and target
  };
  struct Preparation {
    Status status;
    std::optional<std::size_t> copy = std::nullopt;  ///< number in the pool
  };
  /// The handle used last: consecutive items mostly share a folder.
  template <class Key>
  struct Cached {
    Key number = {};
    std::shared_ptr<FileDescriptor> folder = nullptr;
    std::string path = {};
  };

  StagedTransaction(const Volume& volume, Elevation& elevation, const Ownership& ownership, CopyPool::Caller caller);

  [[nodiscard]] CopiedAmount copied() const { return {copied_.bytes, copied_.files}; }
  /// Does the work in a thread of its own while the calling thread only waits, and tells the observer meanwhile.
  void attend(const std::function<void()>& work, TransactionObserver& observer);
  std::vector<Error> removeAreas();
  void forgetAreas();

  // Staging.
  /// Adds the item, and the request to copy it if it is to be copied.
  Status prepare(const TransactionItem& asked, std::vector<CopyPool::Request>& requests);
  Result<std::size_t> folderFor(const TransactionItem& asked, Item& item);
  Result<std::size_t> makeFolder(const std::string& target);
  Result<std::size_t> areaFor(const TargetFolder& found);
  Status checkOldItem(const Item& item);
  Result<std::shared_ptr<FileDescriptor>> sourceFolder(const std::string& path);
  Result<std::shared_ptr<FileDescriptor>> stagedFolder(std::size_t number);
  [[nodiscard]] ItemResult settle(std::size_t number, const Preparation& preparation);

  // The commit.
  [[nodiscard]] std::vector<std::size_t> countListed(std::span<const std::size_t> items) const;
  Status commitItem(Item& item, const std::vector<std::size_t>& listed);
  void moveWholeFolder(std::size_t number);
  Result<const FileDescriptor*> targetFolder(std::size_t number, bool makes);
  Status place(const Item& item, const Volume::Spot& staged, const Volume::Spot& target);
  Status placeInTwoSteps(const Item& item, const Volume::Spot& staged, const Volume::Spot& target);
  Status moveOld(const Item& item, const Volume::Spot& target, bool isSetAside);
  [[nodiscard]] Status verify(const Item& item, const Volume::Spot& target) const;

  const Volume& volume_;
  Elevation& elevation_;
  const Ownership ownership_;
  const CopyPool::Caller caller_;
  CopyCount copied_;
  int unflushed_ = 0;               ///< error of the last flush after a commit, or 0
  std::vector<StagingArea> areas_;  ///< the one that every installer finds first
  std::vector<MountedFileSystem> fileSystems_;
  std::vector<Folder> folders_;
  std::map<std::string, std::size_t> folderOfTarget_;
  std::deque<Item> items_;  ///< never moves
  Cached<std::string> source_;
  Cached<std::size_t> staged_;
  Cached<std::size_t> target_;
  CopyPool pool_;  ///< last: its threads end first
};
