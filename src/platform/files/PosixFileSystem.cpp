#include "platform/files/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include "foundation/Exception.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/files/CopyAhead.h"
#include "platform/files/FolderListing.h"
#include "platform/files/StagedCopy.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeCopy.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;
using Place = Volume::Place;

/// Kinds of folders that a Mac shows as one item by their extension alone.
constexpr std::array<std::string_view, 20> packageExtensions = {
    "app",    "bundle",      "plugin",  "lrplugin",    "lrdevplugin", "lrmodule", "component",
    "kext",   "prefpane",    "saver",   "qlgenerator", "mdimporter",  "wdgt",     "workflow",
    "action", "colorpicker", "service", "xpc",         "appex",       "8bf"};

/// Whether the folder is a package: by its extension, or because it has one and is laid out as a bundle.
bool isPackage(int parent, const std::string& name) {
  const std::string_view extension = pathExtension(name);
  if (extension.empty()) return false;
  if (std::ranges::any_of(packageExtensions, [&](auto known) { return equalIgnoringCase(known, extension); })) {
    return true;
  }
  return ::faccessat(parent, joinPath(name, "Contents/Info.plist").c_str(), F_OK, 0) == 0;
}

bool isHidden(std::string_view name) { return name.starts_with('.'); }

std::vector<WalkedItem> visibleEntriesOf(int folder, const std::string& path) {
  std::vector<WalkedItem> items;
  const auto entries = listFolder(folder);
  if (!entries) return items;
  for (const FolderEntry& entry : *entries) {
    if (isHidden(entry.name)) continue;
    items.push_back(
        {joinPath(path, entry.name), entry.type, entry.type == ItemType::folder && isPackage(folder, entry.name)});
  }
  return items;
}

constexpr int folderToRead = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

void walkFolder(int folder, const std::string& path, const std::function<void(const WalkedItem&)>& visit) {
  for (const WalkedItem& item : visibleEntriesOf(folder, path)) {
    visit(item);
    if (item.type != ItemType::folder || item.isPackage) continue;
    const FileDescriptor inner(::openat(folder, lastPathComponent(item.path).c_str(), folderToRead | O_NOFOLLOW));
    if (inner) walkFolder(inner.get(), item.path, visit);
  }
}

int writeAll(int file, std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = ::write(file, data.data(), data.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    data.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

class PosixWritableFile : public WritableFile {
 public:
  explicit PosixWritableFile(FileDescriptor file) : file_(std::move(file)) {}

  void writeData(std::string_view data) override {
    if (const int error = writeAll(file_.get(), data)) throw Exception(systemError(error, "").description());
  }

 private:
  FileDescriptor file_;
};

}  // namespace

// Looking.

bool PosixFileSystem::exists(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::follow, Purpose::look);
  if (!place) return false;
  struct stat status {};
  const int flags = volume_.isInBundle(path) ? 0 : AT_SYMLINK_NOFOLLOW;
  return ::fstatat(place->folder.get(), place->name.c_str(), &status, flags) == 0;
}

bool PosixFileSystem::isTaken(const std::string& path) const { return static_cast<bool>(attributesOfItem(path)); }

Result<ItemAttributes> PosixFileSystem::attributesOfItem(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::look);
  if (!place) return place.error();
  struct stat status {};
  if (::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return systemError(errno, path);
  }
  const timespec modified = modificationTime(status);
  return ItemAttributes{.type = itemType(status),
                        .size = static_cast<std::uint64_t>(status.st_size),
                        .permissions = status.st_mode & 07777U,
                        .modificationNanoseconds = std::int64_t{modified.tv_sec} * 1'000'000'000 + modified.tv_nsec};
}

Result<FileDescriptor> PosixFileSystem::open(const std::string& path, int flags, Purpose purpose) const {
  const auto place = volume_.find(path, purpose == Purpose::change ? LastLink::keep : LastLink::follow, purpose);
  if (!place) return place.error();
  // On the volume the last link has been followed already; what is one now was put there in between.
  if (!volume_.isInBundle(path)) flags |= O_NOFOLLOW;
  FileDescriptor opened(::openat(place->folder.get(), place->name.c_str(), flags | O_CLOEXEC));
  if (!opened) return systemError(errno, path);
  return opened;
}

Result<FileDescriptor> PosixFileSystem::openFile(const std::string& path, int flags, Purpose purpose) const {
  // Not blocking: a pipe of that name must not hold up the program.
  auto file = open(path, flags | O_NONBLOCK, purpose);
  if (!file) return file;
  struct stat status {};
  if (::fstat(file->get(), &status) != 0) return systemError(errno, path);
  if (S_ISDIR(status.st_mode)) return Error::posix(std::errc::is_a_directory, path);
  if (!S_ISREG(status.st_mode)) return Error::posix(std::errc::not_supported, path);
  return file;
}

Result<std::vector<std::string>> PosixFileSystem::contentsOfDirectory(const std::string& path) const {
  const auto folder = open(path, folderToRead, Purpose::look);
  if (!folder) return folder.error();
  auto entries = listFolder(folder->get());
  if (!entries) return systemError(entries.error().code, path);
  std::vector<std::string> names;
  names.reserve(entries->size());
  for (FolderEntry& entry : *entries) names.push_back(std::move(entry.name));
  return names;
}

void PosixFileSystem::walk(const std::string& folder, const std::function<void(const WalkedItem&)>& visit) const {
  const auto opened = open(folder, folderToRead, Purpose::look);
  if (opened) walkFolder(opened->get(), folder, visit);
}

std::vector<WalkedItem> PosixFileSystem::visibleEntries(const std::string& folder) const {
  const auto opened = open(folder, folderToRead, Purpose::look);
  if (!opened) return {};
  return visibleEntriesOf(opened->get(), folder);
}

Result<std::string> PosixFileSystem::readFile(const std::string& path, std::size_t limit) const {
  const auto file = openFile(path, O_RDONLY, Purpose::look);
  if (!file) return file.error();
  std::string content;
  std::array<char, 16384> block{};
  while (content.size() < limit) {
    const ssize_t length = ::read(file->get(), block.data(), std::min(block.size(), limit - content.size()));
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return systemError(errno, path);
    if (length == 0) break;
    content.append(block.data(), static_cast<std::size_t>(length));
  }
  return content;
}

// Making and changing.

int PosixFileSystem::handToUser(int item, int folder) const {
  if (::geteuid() != 0) return 0;
  struct stat status {};
  if (::fstat(folder, &status) != 0) return errno;
  return ::fchown(item, user_.account().id, status.st_gid) != 0 ? errno : 0;
}

Status PosixFileSystem::createFile(const std::string& path, std::string_view content, std::uint32_t permissions) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  const int folder = place->folder.get();
  for (int attempt = 0; attempt < mostStagedNames; ++attempt) {
    const std::string name = stagedName(place->name, attempt);
    if (!freeStagedName(folder, name)) continue;
    const FileDescriptor file(
        ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) return systemError(errno, path);
    int error = writeAll(file.get(), content);
    if (error == 0) error = handToUser(file.get(), folder);
    if (error == 0 && ::fchmod(file.get(), permissions) != 0) error = errno;
    if (error == 0 && ::renameat(folder, name.c_str(), folder, place->name.c_str()) != 0) error = errno;
    if (error == 0) return {};
    ::unlinkat(folder, name.c_str(), 0);
    return systemError(error, path);
  }
  return Error::posix(std::errc::device_or_resource_busy, path);
}

Result<std::unique_ptr<WritableFile>> PosixFileSystem::openForWriting(const std::string& path) {
  auto file = openFile(path, O_WRONLY, Purpose::change);
  if (!file) return file.error();
  return std::unique_ptr<WritableFile>(std::make_unique<PosixWritableFile>(std::move(*file)));
}

Status PosixFileSystem::createDirectory(const std::string& path, std::uint32_t permissions) {
  auto place = volume_.find(path, LastLink::keep, Purpose::change);
  const std::string parent = deletingLastPathComponent(path);
  if (!place && place.error().is(std::errc::no_such_file_or_directory) && !parent.empty() && parent != path) {
    constexpr std::uint32_t usualPermissions = 0755;
    if (Status made = createDirectory(parent, usualPermissions); !made) return made;
    place = volume_.find(path, LastLink::keep, Purpose::change);
  }
  if (!place) return place.error();
  const int folder = place->folder.get();
  if (::mkdirat(folder, place->name.c_str(), 0700) != 0) {
    if (errno != EEXIST) return systemError(errno, path);
    // A link to a folder will do. One that leads nowhere stays in the way: the disk that it leads to may be back
    // tomorrow.
    if (!open(path, folderToRead, Purpose::look)) return Error::posix(std::errc::file_exists, path);
    return {};
  }
  const FileDescriptor made(::openat(folder, place->name.c_str(), folderToRead | O_NOFOLLOW));
  if (!made) return systemError(errno, path);
  if (const int error = handToUser(made.get(), folder)) return systemError(error, path);
  if (::fchmod(made.get(), permissions) != 0) return systemError(errno, path);
  return {};
}

Status PosixFileSystem::setAttributes(const std::string& path, const OwnershipAndMode& attributes) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  const int folder = place->folder.get();
  const char* const name = place->name.c_str();
  struct stat status {};
  if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return systemError(errno, path);
  if (attributes.permissions && !S_ISLNK(status.st_mode)) {
    const FileDescriptor item(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!item || ::fchmod(item.get(), *attributes.permissions) != 0) return systemError(errno, path);
  }
  const auto owner = attributes.owner ? userNumber(*attributes.owner) : std::optional(static_cast<uid_t>(-1));
  const auto group = attributes.group ? groupNumber(*attributes.group) : std::optional(static_cast<gid_t>(-1));
  if (!owner || !group) return Error::posix(std::errc::invalid_argument, path);
  if (::fchownat(folder, name, *owner, *group, AT_SYMLINK_NOFOLLOW) != 0) return systemError(errno, path);
  return {};
}

Status PosixFileSystem::removeItem(const std::string& path) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  return attended([&] { return removeTree(place->folder.get(), place->name); });
}

std::uint64_t PosixFileSystem::sizeOfItem(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::look);
  return place ? sizeOfTree(place->folder.get(), place->name) : 0;
}

bool PosixFileSystem::isSmall(const std::string& path) const {
  constexpr off_t most = 256L * 1024;
  const auto place = volume_.find(path, LastLink::keep, Purpose::look);
  struct stat status {};
  if (!place || ::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return true;
  return !S_ISDIR(status.st_mode) && status.st_size <= most;
}

Status PosixFileSystem::attended(const std::function<Status()>& work) {
  if (!whileBusy_) return work();
  constexpr std::chrono::milliseconds pause(30);
  std::future<Status> done = std::async(std::launch::async, work);
  while (done.wait_for(pause) == std::future_status::timeout) whileBusy_();
  return done.get();
}

// Copying.

/// The same error with a code that nobody takes for a lack of rights on the old item: a source that cannot be read, or
/// a file system that has no links, is no reason to remove anything.
Error withoutPermissionCode(Error error) {
  if (error.is(std::errc::permission_denied) || error.is(std::errc::operation_not_permitted)) {
    error.code = static_cast<std::int32_t>(std::errc::io_error);
  }
  return error;
}

/// Makes copies ahead for as long as the plan lives.
class PosixFileSystem::Plan : public CopyPlan {
 public:
  Plan(PosixFileSystem& files, std::vector<PlannedCopy> copies)
      : files_(files),
        ahead_(files.volume_, std::move(copies), files.bytesCopied_),
        before_(std::exchange(files.ahead_, &ahead_)) {}
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;
  ~Plan() override { files_.ahead_ = before_; }

 private:
  PosixFileSystem& files_;
  CopyAhead ahead_;
  CopyAhead* before_;
};

std::unique_ptr<CopyPlan> PosixFileSystem::planCopies(std::vector<PlannedCopy> copies) {
  return std::make_unique<Plan>(*this, std::move(copies));
}

Result<StagedCopy> PosixFileSystem::stage(const std::string& source, const std::string& target, const Place& place) {
  if (ahead_ != nullptr) {
    auto staged = ahead_->take(source, target);
    if (staged && staged->isFor(place)) return std::move(*staged);
  }
  constexpr unsigned mostUseful = 8;
  const unsigned threads = std::clamp(std::thread::hardware_concurrency(), 1U, mostUseful);
  auto staged = StagedCopy::make(volume_, source, target, threads, bytesCopied_);
  if (!staged && ahead_ != nullptr && staged.error().is(std::errc::no_space_on_device)) {
    ahead_->stop();  // frees the room that copies before their turn have taken
    return StagedCopy::make(volume_, source, target, threads, bytesCopied_);
  }
  return staged;
}

Status PosixFileSystem::copyItem(const std::string& source, const std::string& target) {
  // For a small file, a thread costs more time than the copy.
  if (isSmall(source)) return copyToFreeName(source, target);
  return attended([&] { return copyToFreeName(source, target); });
}

Status PosixFileSystem::replaceItem(const std::string& source, const std::string& target) {
  if (isSmall(source) && isSmall(target)) return replaceOldItem(source, target);
  return attended([&] { return replaceOldItem(source, target); });
}

Status PosixFileSystem::copyToFreeName(const std::string& source, const std::string& target) {
  const auto place = volume_.find(target, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  struct stat status {};
  if (::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    return Error::posix(std::errc::file_exists, target);
  }
  auto staged = stage(source, target, *place);
  if (!staged) return staged.error();
  return std::move(*staged).putInPlace();
}

Status PosixFileSystem::replaceOldItem(const std::string& source, const std::string& target) {
  const auto place = volume_.find(target, LastLink::keep, Purpose::change);
  if (!place) return withoutPermissionCode(place.error());
  if (!mayRemoveTree(place->folder.get(), place->name)) return Error::posix(std::errc::permission_denied, target);
  auto staged = stage(source, target, *place);
  if (!staged) return withoutPermissionCode(staged.error());
  const Status exchanged = std::move(*staged).exchangeWithOldItem();
  return exchanged ? Status() : withoutPermissionCode(exchanged.error());
}
