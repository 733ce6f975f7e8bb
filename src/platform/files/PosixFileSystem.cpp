// SPDX-License-Identifier: Apache-2.0

#include "platform/files/PosixFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

/// Kinds of folders that a Mac shows as one item by their extension alone.
constexpr std::array<std::string_view, 20> packageExtensions = {
    "app",    "bundle",      "plugin",  "lrplugin",    "lrdevplugin", "lrmodule", "component",
    "kext",   "prefpane",    "saver",   "qlgenerator", "mdimporter",  "wdgt",     "workflow",
    "action", "colorpicker", "service", "xpc",         "appex",       "8bf"};

/// Whether the folder is a package: by its extension, or because it has one and is laid out as a bundle. Fails when
/// that cannot be told.
Result<bool> isPackage(int parent, const std::string& name) {
  const std::string_view extension = pathExtension(name);
  if (extension.empty()) return false;
  if (std::ranges::any_of(packageExtensions, [&](auto known) { return equalIgnoringCase(known, extension); })) {
    return true;
  }
  if (::faccessat(parent, joinPath(name, "Contents/Info.plist").c_str(), F_OK, 0) == 0) return true;
  if (errno != ENOENT && errno != ENOTDIR) return systemError(errno, name);
  return false;
}

bool isHidden(std::string_view name) { return name.starts_with('.'); }

std::uint64_t sizeOfFile(int folder, const FolderEntry& entry) {
  struct stat status {};
  const bool isFile = entry.type == ItemType::regularFile;
  if (!isFile || ::fstatat(folder, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return 0;
  return static_cast<std::uint64_t>(status.st_size);
}

Result<FolderContents> contentsOf(int folder, const std::string& path) {
  const auto entries = listFolder(folder);
  if (!entries) return systemError(entries.error().code, path);
  FolderContents contents;
  for (const FolderEntry& entry : *entries) {
    if (isHidden(entry.name)) {
      contents.hidden.push_back(joinPath(path, entry.name));
      continue;
    }
    const Result<bool> package = entry.type == ItemType::folder ? isPackage(folder, entry.name) : false;
    if (!package) {
      contents.unreadable.push_back(systemError(package.error().code, joinPath(path, entry.name)));
      continue;
    }
    contents.visible.push_back({.path = joinPath(path, entry.name),
                                .type = entry.type,
                                .isPackage = *package,
                                .size = sizeOfFile(folder, entry)});
  }
  return contents;
}

void walkFolder(int folder, const std::string& path, const WalkHandlers& handlers) {
  const auto contents = contentsOf(folder, path);
  if (!contents) return handlers.unreadable(contents.error());
  for (const std::string& hidden : contents->hidden) {
    if (handlers.hidden) handlers.hidden(hidden);
  }
  for (const Error& error : contents->unreadable) handlers.unreadable(error);
  for (const WalkedItem& item : contents->visible) {
    handlers.visit(item);
    if (item.type != ItemType::folder || item.isPackage) continue;
    const FileDescriptor inner(::openat(folder, lastPathComponent(item.path).c_str(), folderToRead | O_NOFOLLOW));
    if (inner) {
      walkFolder(inner.get(), item.path, handlers);
    } else if (errno != ENOENT) {  // a handler may have removed it
      handlers.unreadable(systemError(errno, item.path));
    }
  }
}

bool isQuarantined(int item) {
  const auto attributes = extendedAttributes(item);
  return attributes && std::ranges::any_of(*attributes, [](const auto& attribute) {
           return attribute.first.ends_with(quarantineMark);
         });
}

void listTree(int folder, const std::string& path, std::vector<TreeItem>& items) {
  const auto entries = listFolder(folder);
  if (!entries) return;
  for (const auto& [name, type] : *entries) {
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
    const bool isFolder = type == ItemType::folder;
    items.push_back({.path = joinPath(path, name),
                     .type = type,
                     .isPackage = isFolder && isPackage(folder, name).valueOr(false),
                     .size = type == ItemType::regularFile ? static_cast<std::uint64_t>(status.st_size) : 0,
                     .permissions = status.st_mode & 07777U,
                     .link = readLink(folder, name).value_or("")});
    if (!isFolder && type != ItemType::regularFile) continue;
    const FileDescriptor item(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!item) continue;
    items.back().isQuarantined = isQuarantined(item.get());
    if (isFolder) listTree(item.get(), joinPath(path, name), items);
  }
}

}  // namespace

// Looking.

Error PosixFileSystem::noted(Error error, const std::string& path) const {
  constexpr std::array absent = {
      std::errc::no_such_file_or_directory, std::errc::not_a_directory,  std::errc::too_many_symbolic_link_levels,
      std::errc::filename_too_long,         std::errc::invalid_argument, std::errc::read_only_file_system};
  const bool isAbsent = std::ranges::any_of(absent, [&](std::errc code) { return error.is(code); });
  if (!isAbsent) unreadable_.insert_or_assign(path, error);
  return error;
}

std::vector<Error> PosixFileSystem::unreadable() const {
  std::vector<Error> errors;
  for (const auto& [path, error] : unreadable_) errors.push_back(systemError(error.code, path));
  return errors;
}

bool PosixFileSystem::exists(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::follow, Purpose::look);
  struct stat status {};
  const int flags = volume_.isInBundle(path) ? 0 : AT_SYMLINK_NOFOLLOW;
  const bool isThere = place && ::fstatat(place->folder.get(), place->name.c_str(), &status, flags) == 0;
  if (!isThere) noted(place ? systemError(errno, path) : place.error(), path);
  return isThere;
}

bool PosixFileSystem::isTaken(const std::string& path) const { return static_cast<bool>(attributesOfItem(path)); }

Result<ItemAttributes> PosixFileSystem::attributesOfItem(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::look);
  if (!place) return noted(place.error(), path);
  struct stat status {};
  if (::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return noted(systemError(errno, path), path);
  }
  const timespec modified = modificationTime(status);
  return ItemAttributes{.type = itemType(status),
                        .owner = {.user = status.st_uid, .group = status.st_gid},
                        .size = static_cast<std::uint64_t>(status.st_size),
                        .permissions = status.st_mode & 07777U,
                        .modificationNanoseconds = std::int64_t{modified.tv_sec} * 1'000'000'000 + modified.tv_nsec};
}

Result<FileDescriptor> PosixFileSystem::open(const std::string& path, int flags, Purpose purpose) const {
  const auto place = volume_.find(path, purpose == Purpose::change ? LastLink::keep : LastLink::follow, purpose);
  if (!place) return noted(place.error(), path);
  // On the volume the last link has been followed already; what is one now was put there in between.
  if (!volume_.isInBundle(path)) flags |= O_NOFOLLOW;
  FileDescriptor opened(::openat(place->folder.get(), place->name.c_str(), flags | O_CLOEXEC));
  if (!opened) return noted(systemError(errno, path), path);
  return opened;
}

Result<FileDescriptor> PosixFileSystem::openFile(const std::string& path, int flags, Purpose purpose) const {
  // Not blocking: a pipe of that name must not hold up the program.
  auto file = open(path, flags | O_NONBLOCK, purpose);
  if (!file) return file;
  struct stat status {};
  if (::fstat(file->get(), &status) != 0) return noted(systemError(errno, path), path);
  if (S_ISDIR(status.st_mode)) return Error::posix(std::errc::is_a_directory, path);
  if (!S_ISREG(status.st_mode)) return Error::posix(std::errc::not_supported, path);
  return file;
}

Result<std::vector<std::string>> PosixFileSystem::contentsOfDirectory(const std::string& path) const {
  return namesIn(path, Order::byName);
}

Result<std::vector<std::string>> PosixFileSystem::listing(const std::string& path) const {
  return namesIn(path, Order::asListed);
}

Result<std::vector<std::string>> PosixFileSystem::namesIn(const std::string& path, Order order) const {
  const auto folder = open(path, folderToRead, Purpose::look);
  if (!folder) return folder.error();
  auto entries = listFolder(folder->get(), order);
  if (!entries) return noted(systemError(entries.error().code, path), path);
  std::vector<std::string> names;
  names.reserve(entries->size());
  for (FolderEntry& entry : *entries) names.push_back(std::move(entry.name));
  return names;
}

void PosixFileSystem::walk(const std::string& folder, const WalkHandlers& handlers) const {
  WalkHandlers all = handlers;
  if (!all.unreadable) all.unreadable = [&](const Error& error) { noted(error, error.subject); };
  const auto opened = open(folder, folderToRead, Purpose::look);
  if (opened) return walkFolder(opened->get(), folder, all);
  all.unreadable(opened.error());
}

Result<FolderContents> PosixFileSystem::entriesOf(const std::string& folder) const {
  const auto opened = open(folder, folderToRead, Purpose::look);
  if (!opened) return opened.error();
  auto contents = contentsOf(opened->get(), folder);
  if (!contents) return noted(contents.error(), folder);
  for (const Error& error : contents->unreadable) noted(error, error.subject);
  return contents;
}

Result<std::vector<TreeItem>> PosixFileSystem::everythingBelow(const std::string& folder) const {
  const auto opened = open(folder, folderToRead, Purpose::look);
  if (!opened) return opened.error();
  std::vector<TreeItem> items;
  listTree(opened->get(), "", items);
  return items;
}

Result<std::string> PosixFileSystem::readFile(const std::string& path, std::size_t limit) const {
  const auto file = openFile(path, O_RDONLY, Purpose::look);
  if (!file) return file.error();
  std::string content;
  std::array<char, 16384> block{};
  while (content.size() < limit) {
    const ssize_t length = ::read(file->get(), block.data(), std::min(block.size(), limit - content.size()));
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return noted(systemError(errno, path), path);
    if (length == 0) break;
    content.append(block.data(), static_cast<std::size_t>(length));
  }
  return content;
}
