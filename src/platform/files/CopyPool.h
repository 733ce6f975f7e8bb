// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/files/FileCopy.h"
#include "platform/files/FolderListing.h"

/// Copies items with everything below them, several at a time. The threads have the rights of the thread that creates
/// the pool. Works with fewer threads when some cannot be started.
class CopyPool {
 public:
  /// An item to be copied to a free name in an open folder.
  struct Request {
    std::shared_ptr<FileDescriptor> sourceFolder;
    std::string sourceName;
    std::shared_ptr<FileDescriptor> targetFolder;
    std::string targetName;
    CopyAttributes attributes;
  };

  struct Outcome {
    Status content;     ///< why the copy is incomplete; the caller removes what exists of it
    Status attributes;  ///< the first attribute that could not be set
  };

  /// Whether the calling thread also copies while it waits.
  enum class Caller { helps, onlyWaits };

  /// `copied` grows with the bytes of content.
  CopyPool(Caller caller, CopyCount& copied) : caller_(caller), copied_(copied) {}
  /// Cancels.
  ~CopyPool();
  CopyPool(const CopyPool&) = delete;
  CopyPool& operator=(const CopyPool&) = delete;

  /// Queues the items, and starts threads when there is work for several. Their numbers go on from 0.
  void add(std::vector<Request> requests);

  /// Number of added items.
  [[nodiscard]] std::size_t size() const { return items_.size(); }

  /// Waits until the item is complete or has failed, but not much longer than `limit`. Returns whether it is done.
  [[nodiscard]] bool waitFor(std::size_t item, std::chrono::milliseconds limit);
  /// Returns the outcome of a finished item. Call it once per item.
  [[nodiscard]] Outcome takeOutcome(std::size_t item);

  /// Lets the items that are not complete fail with operation_canceled, and returns when nothing is being copied.
  void cancel();

 private:
  struct Item;
  struct Folder;
  /// An item, or files of a folder that another thread is copying.
  struct Job {
    std::shared_ptr<Item> item = nullptr;
    std::shared_ptr<Folder> folder = nullptr;
    std::vector<std::string> files = {};
  };

  void startThreads();
  void work();
  [[nodiscard]] bool hasWork() const { return !jobs_.empty() || next_ < items_.size(); }
  [[nodiscard]] std::optional<Job> takeJob();
  bool runOneJob();
  void copyItem(const std::shared_ptr<Item>& item);
  void copyFolder(const std::shared_ptr<Item>& item, FileDescriptor source, int targetParent, const std::string& name);
  void copyFiles(const std::shared_ptr<Folder>& folder, std::vector<std::string> names);
  /// Gives half of the remaining files to an idle thread.
  void shareFiles(const std::shared_ptr<Folder>& folder, std::size_t done, std::vector<std::string>& names);

  const Caller caller_;
  CopyCount& copied_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<Item>> items_;
  std::size_t next_ = 0;  ///< the first item not begun yet
  std::deque<Job> jobs_;
  std::vector<std::thread> threads_;
  std::size_t running_ = 0;               ///< jobs
  std::atomic<std::ptrdiff_t> idle_ = 0;  ///< threads that wait for a job, less the jobs that wait for a thread
  bool isOver_ = false;
};
