// SPDX-License-Identifier: Apache-2.0

#include "platform/files/TreeComparison.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

using Difference = ItemDifference::Kind;

constexpr int itemToRead = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
constexpr mode_t allPermissions = 07777;

std::string octal(unsigned number) {
  std::string digits;
  for (; number != 0; number /= 8) digits.insert(digits.begin(), static_cast<char>('0' + number % 8));
  return "0" + digits;
}

std::string textOf(const ItemOwner& owner) { return std::to_string(owner.user) + ":" + std::to_string(owner.group); }

/// As much as there is, up to the size of the buffer; -1 for an error.
ssize_t readFully(int file, std::vector<char>& buffer) {
  std::size_t filled = 0;
  while (filled < buffer.size()) {
    const ssize_t got = ::read(file, buffer.data() + filled, buffer.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(filled);
}

bool areSame(int folder, const std::string& name, const std::string& otherName) {
  struct stat one {};
  struct stat other {};
  return ::fstatat(folder, name.c_str(), &one, AT_SYMLINK_NOFOLLOW) == 0 &&
         ::fstatat(folder, otherName.c_str(), &other, AT_SYMLINK_NOFOLLOW) == 0 && isSameItem(one, other);
}

/// A name in an open folder.
struct NamedItem {
  int folder;
  const std::string& name;
};

class TreeComparison {
 public:
  TreeComparison(const ItemOwner& owner, const ItemComparison& comparison) : owner_(owner), comparison_(comparison) {}

  /// False when the comparison is over: by an error, or because nobody wants to know more.
  bool compare(const NamedItem& source, const NamedItem& target, const std::string& path) {
    struct stat from {};
    struct stat to {};
    if (::fstatat(source.folder, source.name.c_str(), &from, AT_SYMLINK_NOFOLLOW) != 0) return fail(path);
    if (::fstatat(target.folder, target.name.c_str(), &to, AT_SYMLINK_NOFOLLOW) != 0) {
      return differs({errno == ENOENT ? Difference::missing : Difference::unreadable, path});
    }
    if (itemType(from) != itemType(to))
      return differs({S_ISLNK(from.st_mode) ? Difference::link : Difference::type, path});
    const ItemOwner found{to.st_uid, to.st_gid};
    if (found != owner_ && !differs({Difference::owner, path, textOf(owner_), textOf(found)})) return false;
    if (S_ISLNK(from.st_mode)) return compareLinks(source, target, path);
    const unsigned mode = to.st_mode & allPermissions;
    if (mode != comparison_.permissions &&
        !differs({Difference::mode, path, octal(comparison_.permissions), octal(mode)})) {
      return false;
    }
    return !(S_ISREG(from.st_mode) || S_ISDIR(from.st_mode)) || compareOpened(source, target, from, to, path);
  }

  [[nodiscard]] Status outcome() const { return outcome_; }

 private:
  bool differs(const ItemDifference& difference) { return comparison_.differs(difference); }

  bool fail(const std::string& path) {
    outcome_ = systemError(errno, path);
    return false;
  }

  bool compareLinks(const NamedItem& source, const NamedItem& target, const std::string& path) {
    const auto from = readLink(source.folder, source.name);
    if (!from) return fail(path);
    const auto to = readLink(target.folder, target.name);
    return to == from || differs({Difference::link, path, *from, to.value_or("")});
  }

  bool compareOpened(const NamedItem& source, const NamedItem& target, const struct stat& from, const struct stat& to,
                     const std::string& path) {
    const FileDescriptor original(::openat(source.folder, source.name.c_str(), itemToRead));
    if (!original) return fail(path);
    const FileDescriptor installed(::openat(target.folder, target.name.c_str(), itemToRead));
    if (!installed) return differs({Difference::unreadable, path});
    if (!compareAttributes(original.get(), installed.get(), path)) return false;
    if (S_ISDIR(from.st_mode)) return compareFolders(original.get(), installed.get(), path);
    if (from.st_size != to.st_size) {
      return differs({Difference::size, path, std::to_string(from.st_size), std::to_string(to.st_size)});
    }
    return compareContents(original.get(), installed.get(), path);
  }

  bool compareAttributes(int original, int installed, const std::string& path) {
    const auto expected = extendedAttributes(original);
    const auto found = extendedAttributes(installed);
    if (!expected) return fail(path);
    if (!found) return differs({Difference::unreadable, path});
    for (const auto& [name, value] : *expected) {
      const auto same = found->find(name);
      const bool isEqual = same != found->end() && same->second == value;
      if (isEqual || name.ends_with(quarantineMark)) continue;
      if (!differs({Difference::attributes, path, name})) return false;
    }
    return true;
  }

  bool compareContents(int original, int installed, const std::string& path) {
    for (;;) {
      const ssize_t expected = readFully(original, original_);
      if (expected < 0) return fail(path);
      const ssize_t found = readFully(installed, installed_);
      if (found < 0) return differs({Difference::unreadable, path});
      const auto length = static_cast<std::size_t>(expected);
      if (found != expected || std::memcmp(original_.data(), installed_.data(), length) != 0) {
        return differs({Difference::content, path});
      }
      if (length < original_.size()) return true;
    }
  }

  bool compareFolders(int original, int installed, const std::string& path) {
    const auto expected = listFolder(original);
    if (!expected) return fail(path);
    const auto found = listFolder(installed);
    if (!found) return differs({Difference::unreadable, path});
    // Volumes of Macs find an item by other letters, too: upper or lower case, composed or not.
    const auto isExpected = [&](const std::string& name) {
      return std::ranges::any_of(*expected, [&](const FolderEntry& entry) {
        const bool isListed = std::ranges::binary_search(*found, entry.name, {}, &FolderEntry::name);
        return !isListed && areSame(installed, entry.name, name);
      });
    };
    auto next = found->begin();
    const auto tellOfExtras = [&](const std::string* before) {
      for (; next != found->end() && (before == nullptr || next->name < *before); ++next) {
        if (!isExpected(next->name) && !differs({Difference::extra, joinPath(path, next->name)})) return false;
      }
      return true;
    };
    for (const FolderEntry& entry : *expected) {
      if (!tellOfExtras(&entry.name)) return false;
      if (next != found->end() && next->name == entry.name) ++next;
      if (!compare({original, entry.name}, {installed, entry.name}, joinPath(path, entry.name))) return false;
    }
    return tellOfExtras(nullptr);
  }

  static constexpr std::size_t bufferSize = std::size_t{128} * 1024;
  const ItemOwner owner_;
  const ItemComparison& comparison_;
  std::vector<char> original_ = std::vector<char>(bufferSize);
  std::vector<char> installed_ = std::vector<char>(bufferSize);
  Status outcome_;
};

}  // namespace

Status compareTrees(const Volume::Place& source, const Volume::Place& target, const std::string& path,
                    const ItemOwner& owner, const ItemComparison& comparison) {
  TreeComparison trees(owner, comparison);
  static_cast<void>(trees.compare({source.folder.get(), source.name}, {target.folder.get(), target.name}, path));
  return trees.outcome();
}
