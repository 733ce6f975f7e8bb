// SPDX-License-Identifier: Apache-2.0

#include "platform/files/CopyPool.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "platform/files/SystemCalls.h"

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

}  // namespace

struct CopyPool::Item {
  explicit Item(Request asked) : request(std::move(asked)) {}

  void note(const CopyErrors& errors, const std::string& subject) {
    if (errors.content == 0 && errors.attribute == 0) return;
    const std::lock_guard guard(mutex);
    if (errors.content != 0 && outcome.content) outcome.content = systemError(errors.content, subject);
    if (errors.attribute != 0 && outcome.attributes) outcome.attributes = systemError(errors.attribute, subject);
    hasFailed = hasFailed || errors.content != 0;
  }

  Request request;
  std::atomic<bool> hasFailed = false;
  std::atomic<bool> lacksMemory = false;
  std::atomic<std::size_t> parts = 1;  ///< jobs and folders that are not finished; the item is done at 0
  std::mutex mutex;
  Outcome outcome;
};

/// A folder being copied. It gets its attributes when the last one who holds it lets go: what is still put into it
/// would change its modification time.
struct CopyPool::Folder {
  Folder(std::shared_ptr<Item> copied, FileDescriptor from, FileDescriptor to)
      : item(std::move(copied)), source(std::move(from)), target(std::move(to)) {
    ++item->parts;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    try {
      if (!item->hasFailed) {
        item->note(copyAttributes(source.get(), target.get(), item->request.attributes), item->request.sourceName);
      }
    } catch (const std::bad_alloc&) {
      item->lacksMemory = item->hasFailed = true;  // telling of it needs memory, too
    }
    --item->parts;
  }

  std::shared_ptr<Item> item;
  FileDescriptor source;
  FileDescriptor target;
};

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

void CopyPool::copyItem(const std::shared_ptr<Item>& item) {
  const auto& [sourceFolder, sourceName, targetFolder, targetName, attributes] = item->request;
  // Not blocking: a pipe of that name must not hold up the program.
  constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  FileDescriptor source(::openat(sourceFolder->get(), sourceName.c_str(), flags));
  struct stat status {};
  if (!source && errno == ELOOP) {
    return item->note(copyLink(sourceFolder->get(), sourceName, targetFolder->get(), targetName, attributes),
                      sourceName);
  }
  if (!source || ::fstat(source.get(), &status) != 0) return item->note({errno, 0}, sourceName);
  if (S_ISDIR(status.st_mode)) {
    copyFolder(item, std::move(source), targetFolder->get(), targetName);
  } else if (S_ISREG(status.st_mode)) {
    item->note(copyFile(source.get(), status, targetFolder->get(), targetName, attributes, copied_), sourceName);
  } else {
    item->note({ENOTSUP, 0}, sourceName);
  }
}

void CopyPool::copyFolder(const std::shared_ptr<Item>& item, FileDescriptor source, int targetParent,
                          const std::string& name) {
  if (::mkdirat(targetParent, name.c_str(), 0700) != 0) return item->note({errno, 0}, name);
  FileDescriptor target(::openat(targetParent, name.c_str(), folderFlags));
  if (!target) return item->note({errno, 0}, name);
  const auto entries = listFolder(source.get());
  if (!entries) return item->note({entries.error().code, 0}, name);

  const auto folder = std::make_shared<Folder>(item, std::move(source), std::move(target));
  const int from = folder->source.get();
  const int to = folder->target.get();
  std::vector<std::string> files;
  for (const FolderEntry& entry : *entries) {
    if (item->hasFailed) return;
    switch (entry.type) {
      case ItemType::regularFile: files.push_back(entry.name); break;
      case ItemType::folder: {
        FileDescriptor inner(::openat(from, entry.name.c_str(), folderFlags));
        if (!inner) return item->note({errno, 0}, entry.name);
        copyFolder(item, std::move(inner), to, entry.name);
        break;
      }
      case ItemType::symbolicLink:
        item->note(copyLink(from, entry.name, to, entry.name, item->request.attributes), entry.name);
        break;
      case ItemType::other: item->note({ENOTSUP, 0}, entry.name); break;
    }
  }
  copyFiles(folder, std::move(files));
}

void CopyPool::copyFiles(const std::shared_ptr<Folder>& folder, std::vector<std::string> names) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (folder->item->hasFailed) return;
    if (idle_ > 0 && names.size() - i > 1) shareFiles(folder, i, names);
    const std::string& name = names[i];
    folder->item->note(
        copyFile(folder->source.get(), name, folder->target.get(), folder->item->request.attributes, copied_), name);
  }
}

void CopyPool::shareFiles(const std::shared_ptr<Folder>& folder, std::size_t done, std::vector<std::string>& names) {
  {
    const std::lock_guard guard(mutex_);
    if (idle_ <= 0 || next_ < items_.size()) return;
    const auto half = names.begin() + static_cast<std::ptrdiff_t>(done + (names.size() - done + 1) / 2);
    jobs_.push_back({.folder = folder, .files = {std::make_move_iterator(half), std::make_move_iterator(names.end())}});
    names.erase(half, names.end());
    --idle_;
  }
  changed_.notify_all();
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
