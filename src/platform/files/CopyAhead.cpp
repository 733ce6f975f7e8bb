#include "platform/files/CopyAhead.h"

#include <algorithm>
#include <utility>

CopyAhead::CopyAhead(const Volume& volume, std::vector<PlannedCopy> copies, std::atomic<std::uint64_t>& copied)
    : volume_(volume), copied_(copied) {
  entries_.reserve(copies.size());
  for (PlannedCopy& copy : copies) entries_.push_back({std::move(copy)});
  // The first is asked for at once, and is copied fastest by whoever asks.
  if (!entries_.empty()) entries_.front().state = State::over;
  constexpr unsigned mostWorkers = 4;
  const unsigned spareCores = std::max(std::thread::hardware_concurrency(), 1U) - 1;
  const auto wanted =
      std::min<std::size_t>(std::min(spareCores, mostWorkers), std::max<std::size_t>(entries_.size(), 1) - 1);
  for (std::size_t i = 0; i < wanted; ++i) workers_.emplace_back([this] { work(); });
}

CopyAhead::~CopyAhead() {
  stop();
  for (std::thread& worker : workers_) worker.join();
}

void CopyAhead::stop() {
  std::vector<StagedCopy> removed;
  std::unique_lock guard(mutex_);
  isStopped_ = true;
  changed_.notify_all();
  changed_.wait(guard, [this] {
    return std::ranges::none_of(entries_, [](const Entry& entry) { return entry.state == State::inProgress; });
  });
  for (Entry& entry : entries_) {
    if (entry.staged) removed.push_back(std::move(*entry.staged));
    entry.staged.reset();
    entry.state = State::over;
  }
}

std::optional<StagedCopy> CopyAhead::take(const std::string& source, const std::string& target) {
  std::unique_lock guard(mutex_);
  const auto found =
      std::find_if(entries_.begin() + static_cast<std::ptrdiff_t>(turn_), entries_.end(),
                   [&](const Entry& entry) { return entry.copy.source == source && entry.copy.target == target; });
  if (found == entries_.end()) return std::nullopt;
  // Entries that were passed over keep what they have until the end.
  turn_ = static_cast<std::size_t>(found - entries_.begin()) + 1;
  if (found->state == State::waiting) found->state = State::over;
  changed_.notify_all();
  changed_.wait(guard, [&] { return found->state != State::inProgress; });
  found->state = State::over;
  return std::exchange(found->staged, std::nullopt);
}

CopyAhead::Entry* CopyAhead::nextToStage() {
  const std::size_t end = std::min(entries_.size(), turn_ + workers_.size() + 1);
  for (std::size_t i = turn_; i < end; ++i) {
    Entry& entry = entries_[i];
    if (entry.state == State::waiting && entry.triedAt != turn_ + 1) return &entry;
  }
  return nullptr;
}

void CopyAhead::work() {
  std::unique_lock guard(mutex_);
  for (;;) {
    Entry* entry = nullptr;
    changed_.wait(guard, [&] {
      entry = isStopped_ ? nullptr : nextToStage();
      return isStopped_ || entry != nullptr;
    });
    if (isStopped_) return;
    entry->state = State::inProgress;
    guard.unlock();
    // Alone: the other cores have copies of their own.
    auto staged = StagedCopy::make(volume_, entry->copy.source, entry->copy.target, /*mostThreads=*/1, copied_);
    guard.lock();
    entry->triedAt = turn_ + 1;
    entry->state = staged ? State::staged : State::waiting;
    if (staged) entry->staged.emplace(std::move(*staged));
    changed_.notify_all();
  }
}
