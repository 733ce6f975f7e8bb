// SPDX-License-Identifier: Apache-2.0

#include "platform/files/CopyPool.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "platform/files/CopyPoolParts.h"

CopyPool::~CopyPool() {
  cancel();
  {
    const std::lock_guard guard(mutex_);
    isOver_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void CopyPool::add(std::vector<Request> requests) {
  {
    const std::lock_guard guard(mutex_);
    for (Request& request : requests) items_.push_back(std::make_shared<Item>(std::move(request)));
  }
  startThreads();
  changed_.notify_all();
}

void CopyPool::startThreads() {
  constexpr unsigned maxThreads = 8;
  const unsigned cores = std::clamp(std::thread::hardware_concurrency(), 1U, maxThreads);
  const unsigned wanted = caller_ == Caller::helps ? cores - 1 : cores;
  while (threads_.size() < wanted) {
    try {
      threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
      return;  // whoever waits for an item helps
    }
  }
}

void CopyPool::work() {
  for (;;) {
    {
      std::unique_lock guard(mutex_);
      ++idle_;
      changed_.wait(guard, [this] { return isOver_ || hasWork(); });
      --idle_;
      if (isOver_) return;
    }
    runOneJob();
  }
}

std::optional<CopyPool::Job> CopyPool::takeJob() {
  if (!jobs_.empty()) {
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    ++idle_;
    return job;
  }
  if (next_ < items_.size()) return Job{.item = items_[next_++]};
  return std::nullopt;
}

bool CopyPool::runOneJob() {
  std::optional<Job> job;
  {
    const std::lock_guard guard(mutex_);
    job = takeJob();
    if (!job) return false;
    ++running_;
  }
  const std::shared_ptr<Item> item = job->folder != nullptr ? job->folder->item : job->item;
  try {
    if (job->folder != nullptr) {
      copyFiles(job->folder, std::move(job->files));
    } else {
      copyItem(item);
    }
  } catch (const std::bad_alloc&) {
    item->note({ENOMEM, 0}, item->request.sourceName);
  }
  if (job->folder == nullptr) --item->parts;
  job.reset();
  {
    const std::lock_guard guard(mutex_);
    --running_;
  }
  changed_.notify_all();
  return true;
}

bool CopyPool::waitFor(std::size_t item, std::chrono::milliseconds limit) {
  const std::shared_ptr<Item> wanted = items_[item];
  const bool helps = caller_ == Caller::helps || threads_.empty();
  const auto end = std::chrono::steady_clock::now() + limit;
  while (helps && wanted->parts > 0 && std::chrono::steady_clock::now() < end && runOneJob()) {
  }
  std::unique_lock guard(mutex_);
  if (helps) ++idle_;
  changed_.wait_until(guard, end, [&] { return wanted->parts == 0 || (helps && hasWork()); });
  if (helps) --idle_;
  return wanted->parts == 0;
}

CopyPool::Outcome CopyPool::takeOutcome(std::size_t item) {
  const std::lock_guard guard(mutex_);
  const std::shared_ptr<Item> finished = std::exchange(items_[item], nullptr);
  if (finished->lacksMemory) finished->note({ENOMEM, 0}, finished->request.sourceName);
  return std::move(finished->outcome);
}

void CopyPool::cancel() {
  std::unique_lock guard(mutex_);
  for (const auto& item : items_) {
    if (item != nullptr && item->parts > 0) item->note({ECANCELED, 0}, item->request.sourceName);
  }
  for (; next_ < items_.size(); ++next_) --items_[next_]->parts;
  guard.unlock();
  while (runOneJob()) {
  }
  guard.lock();
  changed_.wait(guard, [this] { return running_ == 0; });
}
