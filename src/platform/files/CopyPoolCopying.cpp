// SPDX-License-Identifier: Apache-2.0

// What the threads of a pool do.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/files/CopyPool.h"
#include "platform/files/CopyPoolParts.h"

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

}  // namespace

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
