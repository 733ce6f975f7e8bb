#include "platform/files/TreeCopy.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

constexpr mode_t keptPermissions = 0777;

/// Gives the copy what remains when its content is there. Returns an errno value.
int finish(int source, int target, const struct stat& status) {
  if (const int error = copyExtendedAttributes(source, target)) return error;
  if (::fchmod(target, status.st_mode & keptPermissions) != 0) return errno;
  const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, modificationTime(status)};
  return ::futimens(target, times.data()) != 0 ? errno : 0;
}

/// Copies the bytes in pieces, each of which is counted when it is there.
int copyRange(int source, int target, off_t offset, off_t end, std::atomic<std::uint64_t>& copied) {
  constexpr off_t piece = off_t{8} << 20U;
  while (offset < end) {
    const off_t length = std::min(piece, end - offset);
    if (const int error = copyFileRange(source, target, offset, length)) return error;
    copied += static_cast<std::uint64_t>(length);
    offset += length;
  }
  return 0;
}

int copyContent(int source, int target, const struct stat& status, std::atomic<std::uint64_t>& copied) {
  const bool mayHaveHoles = status.st_blocks * 512 < status.st_size;
  if (!mayHaveHoles) return copyRange(source, target, 0, status.st_size, copied);
  off_t offset = 0;
  while (offset < status.st_size) {
    const off_t data = ::lseek(source, offset, SEEK_DATA);
    if (data < 0 && errno == ENXIO) break;                                      // a hole up to the end
    if (data < 0) return copyRange(source, target, 0, status.st_size, copied);  // the file system does not tell
    const off_t hole = ::lseek(source, data, SEEK_HOLE);
    const off_t end = hole < 0 ? status.st_size : hole;
    if (const int error = copyRange(source, target, data, end, copied)) return error;
    offset = end;
  }
  return ::ftruncate(target, status.st_size) != 0 ? errno : 0;
}

class TreeCopy {
 public:
  TreeCopy(unsigned mostThreads, std::atomic<std::uint64_t>& copied) : mostThreads_(mostThreads), copied_(copied) {}

  Status run(const CopyRequest& request, FileDescriptor& lock) {
    struct stat status {};
    if (::fstatat(request.sourceFolder, request.sourceName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      return systemError(errno, request.sourceName);
    }
    switch (itemType(status)) {
      case ItemType::regularFile:
        copyFile(request.sourceFolder, request.sourceName, request.targetFolder, request.targetName, &lock);
        break;
      case ItemType::folder:
        copyFolder(request.sourceFolder, request.sourceName, request.targetFolder, request.targetName, &lock);
        finishJobs();
        break;
      case ItemType::symbolicLink:
        copyLink(request.sourceFolder, request.sourceName, request.targetFolder, request.targetName);
        break;
      case ItemType::other: fail(ENOTSUP, request.sourceName); break;
    }
    if (error_) return *error_;
    return {};
  }

 private:
  /// A folder being copied. It is finished when the last one who holds it is done: what is still put into it would
  /// change its modification time, and its permissions may forbid that.
  struct Folder {
    Folder(TreeCopy& c, FileDescriptor s, FileDescriptor t) : copy(c), source(std::move(s)), target(std::move(t)) {}
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
      if (copy.failed_) return;
      struct stat status {};
      int error = ::fstat(source.get(), &status) != 0 ? errno : 0;
      if (error == 0) error = finish(source.get(), target.get(), status);
      if (error != 0) copy.fail(error, "");
    }

    TreeCopy& copy;
    FileDescriptor source;
    FileDescriptor target;
  };

  struct Job {
    std::shared_ptr<Folder> folder;
    std::string name;
  };

  void fail(int number, const std::string& subject) {
    const std::lock_guard guard(mutex_);
    if (!error_) error_ = systemError(number, subject);
    failed_ = true;
  }

  void copyFolder(int sourceParent, const std::string& sourceName, int targetParent, const std::string& targetName,
                  FileDescriptor* lock) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor source(::openat(sourceParent, sourceName.c_str(), flags));
    if (!source) return fail(errno, sourceName);
    if (::mkdirat(targetParent, targetName.c_str(), 0700) != 0) return fail(errno, targetName);
    FileDescriptor target(::openat(targetParent, targetName.c_str(), flags));
    if (!target) return fail(errno, targetName);
    if (lock != nullptr) *lock = locked(target.get());

    const auto folder = std::make_shared<Folder>(*this, std::move(source), std::move(target));
    const auto entries = listFolder(folder->source.get());
    if (!entries) return fail(entries.error().code, sourceName);
    for (const FolderEntry& entry : *entries) {
      if (failed_) return;
      switch (entry.type) {
        case ItemType::regularFile: addJob({folder, entry.name}); break;
        case ItemType::folder:
          copyFolder(folder->source.get(), entry.name, folder->target.get(), entry.name, nullptr);
          break;
        case ItemType::symbolicLink:
          copyLink(folder->source.get(), entry.name, folder->target.get(), entry.name);
          break;
        case ItemType::other: return fail(ENOTSUP, entry.name);
      }
    }
  }

  void copyFile(int sourceFolder, const std::string& sourceName, int targetFolder, const std::string& targetName,
                FileDescriptor* lock) {
    // Not blocking: what was a file when it was listed may be a pipe by now.
    FileDescriptor source(::openat(sourceFolder, sourceName.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!source) return fail(errno, sourceName);
    struct stat status {};
    if (::fstat(source.get(), &status) != 0) return fail(errno, sourceName);
    if (!S_ISREG(status.st_mode)) return fail(ENOTSUP, sourceName);
    FileDescriptor target(
        ::openat(targetFolder, targetName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!target) return fail(errno, targetName);
    if (lock != nullptr) *lock = locked(target.get());
    int error = copyContent(source.get(), target.get(), status, copied_);
    if (error == 0) error = finish(source.get(), target.get(), status);
    if (error != 0) fail(error, sourceName);
  }

  void copyLink(int sourceFolder, const std::string& sourceName, int targetFolder, const std::string& targetName) {
    std::array<char, PATH_MAX> to{};
    const ssize_t length = ::readlinkat(sourceFolder, sourceName.c_str(), to.data(), to.size() - 1);
    if (length < 0) return fail(errno, sourceName);
    struct stat status {};
    if (::symlinkat(to.data(), targetFolder, targetName.c_str()) != 0) return fail(errno, targetName);
    if (::fstatat(sourceFolder, sourceName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return fail(errno, sourceName);
    const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, modificationTime(status)};
    if (::utimensat(targetFolder, targetName.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0) {
      fail(errno, targetName);
    }
  }

  /// A second descriptor of the new item that holds the lock.
  static FileDescriptor locked(int item) {
    FileDescriptor lock(::fcntl(item, F_DUPFD_CLOEXEC, 0));
    // A file system without locks leaves two installers at once to the person who starts them.
    if (lock) static_cast<void>(::flock(lock.get(), LOCK_EX | LOCK_NB));
    return lock;
  }

  // The files of a folder, copied by whoever is free.

  void addJob(Job job) {
    std::optional<Job> own;
    {
      const std::lock_guard guard(mutex_);
      jobs_.push_back(std::move(job));
      if (jobs_.size() > 1 && workers_.size() + 1 < mostThreads_) {
        workers_.emplace_back([this] { work(); });
      }
      // The queue stays short: every job in it holds its folder open.
      const std::size_t mostJobs = mostThreads_ > 1 ? 32 : 0;
      if (jobs_.size() > mostJobs) own = takeJob();
    }
    changed_.notify_one();
    if (own) runJob(*own);
  }

  std::optional<Job> takeJob() {
    if (jobs_.empty()) return std::nullopt;
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    return job;
  }

  void runJob(const Job& job) {
    if (failed_) return;
    copyFile(job.folder->source.get(), job.name, job.folder->target.get(), job.name, nullptr);
  }

  void work() {
    for (;;) {
      std::optional<Job> job;
      {
        std::unique_lock guard(mutex_);
        changed_.wait(guard, [this] { return !jobs_.empty() || isWalked_; });
        job = takeJob();
      }
      if (!job) return;
      runJob(*job);
    }
  }

  void finishJobs() {
    {
      const std::lock_guard guard(mutex_);
      isWalked_ = true;
    }
    changed_.notify_all();
    work();
    for (std::thread& worker : workers_) worker.join();
  }

  const unsigned mostThreads_;
  std::atomic<std::uint64_t>& copied_;
  std::atomic<bool> failed_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<Error> error_;
  std::deque<Job> jobs_;
  std::vector<std::thread> workers_;
  bool isWalked_ = false;
};

}  // namespace

Status copyTree(const CopyRequest& request, unsigned mostThreads, std::atomic<std::uint64_t>& copied,
                FileDescriptor& lock) {
  return TreeCopy(mostThreads, copied).run(request, lock);
}

Status removeTree(int folder, const std::string& name) {
  if (::unlinkat(folder, name.c_str(), 0) == 0) return {};
  if (errno != EISDIR && errno != EPERM) return systemError(errno, name);
  const int unlinkError = errno;
  const FileDescriptor inner(::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!inner) return systemError(errno == ENOTDIR ? unlinkError : errno, name);
  const auto entries = listFolder(inner.get());
  if (!entries) return entries.error();
  for (const FolderEntry& entry : *entries) {
    if (Status removed = removeTree(inner.get(), entry.name); !removed) return removed;
  }
  if (::unlinkat(folder, name.c_str(), AT_REMOVEDIR) != 0) return systemError(errno, name);
  return {};
}

namespace {

/// Whether the folder lets only the owner of an item, or its own, remove the item, and this process is neither.
bool isKeptBySticky(int folder, const std::string& name) {
  struct stat holding {};
  struct stat held {};
  if (::fstatat(folder, ".", &holding, 0) != 0 || (holding.st_mode & S_ISVTX) == 0) return false;
  if (::fstatat(folder, name.c_str(), &held, AT_SYMLINK_NOFOLLOW) != 0) return false;
  return holding.st_uid != ::geteuid() && held.st_uid != ::geteuid();
}

}  // namespace

bool mayRemoveTree(int folder, const std::string& name) {
  if (::geteuid() == 0) return true;
  if (::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0 || isKeptBySticky(folder, name)) return false;
  const FileDescriptor inner(::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!inner) return errno == ENOTDIR || errno == ELOOP;  // a file or a link goes with the right to its folder
  const auto entries = listFolder(inner.get());
  if (!entries) return false;
  return std::ranges::all_of(*entries,
                             [&](const FolderEntry& entry) { return mayRemoveTree(inner.get(), entry.name); });
}

std::uint64_t sizeOfTree(int folder, const std::string& name) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
  if (S_ISREG(status.st_mode)) return static_cast<std::uint64_t>(status.st_size);
  if (!S_ISDIR(status.st_mode)) return 0;
  const FileDescriptor inner(::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!inner) return 0;
  std::uint64_t size = 0;
  for (const FolderEntry& entry : listFolder(inner.get()).valueOr({})) size += sizeOfTree(inner.get(), entry.name);
  return size;
}
