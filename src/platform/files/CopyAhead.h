#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/files/StagedCopy.h"

/// Stages the next few of a list of copies in threads of its own, while the one before them is being handed over. A
/// copy that could not be staged ahead, because its folder is not there yet or for any other reason, is left to its
/// turn.
class CopyAhead {
 public:
  /// `copied` grows with the bytes that are copied; it must outlive this object.
  CopyAhead(const Volume& volume, std::vector<PlannedCopy> copies, std::atomic<std::uint64_t>& copied);
  CopyAhead(const CopyAhead&) = delete;
  CopyAhead& operator=(const CopyAhead&) = delete;
  /// Waits for copies in progress; what was not taken is removed.
  ~CopyAhead();

  /// The staged copy, whose turn it is now; waits for it when it is being made. Nothing when there is none.
  [[nodiscard]] std::optional<StagedCopy> take(const std::string& source, const std::string& target);

  /// Gives up what is staged and stages no more, for when the room on the disk is needed.
  void stop();

 private:
  enum class State { waiting, inProgress, staged, over };
  struct Entry {
    PlannedCopy copy;
    State state = State::waiting;
    std::optional<StagedCopy> staged = std::nullopt;
    std::size_t triedAt = 0;  ///< the turn at which it last could not be staged, counted from 1
  };

  void work();
  [[nodiscard]] Entry* nextToStage();

  const Volume& volume_;
  std::atomic<std::uint64_t>& copied_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Entry> entries_;
  std::size_t turn_ = 0;  ///< index of the entry that will be asked for next
  bool isStopped_ = false;
  std::vector<std::thread> workers_;
};
