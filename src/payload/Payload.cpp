// SPDX-License-Identifier: Apache-2.0

#include "payload/Payload.h"

#include <algorithm>
#include <utility>

#include "foundation/Path.h"
#include "payload/InstallerTexts.h"

namespace {

bool isLightRoomPlugIn(const std::string& path) { return pathExtension(path) == "lrplugin"; }

void noteHidden(PayloadPart& part, const std::string& path) {
  part.skipped.push_back({path, SkippedEntry::Reason::hidden});
}

/// Tolerates a missing part of the payload.
void noteUnreadable(PayloadPart& part, const Error& error, const std::string& root) {
  if (error.subject == root && error.is(std::errc::no_such_file_or_directory)) return;
  const bool isKnown = std::ranges::find(part.unreadable, error.subject, &Error::subject) != part.unreadable.end();
  if (!isKnown) part.unreadable.push_back(error);
}

}  // namespace

Payload::Payload(Platform& platform)
    : Payload(platform, joinPath(platform.bundles.mainBundle().resourcePath(), "files")) {}

Payload::Payload(Platform& platform, std::string root)
    : platform_(platform), root_(std::move(root)), company_(companyName(platform)) {}

std::string Payload::folder(std::string_view name) const { return joinPath(root_, name); }

std::string Payload::hostIndependentFolder() const { return folder("HD"); }

bool Payload::isInProductFolder(const std::string& path) const {
  const std::string makers = joinPath({hostIndependentFolder(), "Library", "Application Support", company_});
  const std::string folder = deletingLastPathComponent(path);
  return !company_.empty() && folder != makers && isAtOrBelow(folder, makers);
}

PayloadPart Payload::packages(bool isLightRoomSelected) const {
  PayloadPart part;
  const std::string mirror = hostIndependentFolder();
  const auto visit = [&](const WalkedItem& item) {
    if (!item.isPackage) {
      // A folder by itself is no content.
      if (item.type == ItemType::folder || isInProductFolder(item.path)) return;
      part.skipped.push_back({item.path, SkippedEntry::Reason::notPartOfProduct});
    } else if (isLightRoomPlugIn(item.path) && !isLightRoomSelected) {
      part.skipped.push_back({item.path, SkippedEntry::Reason::lightroomOnly});
    } else {
      part.items.push_back(item);
    }
  };
  const auto hidden = [&](const std::string& path) {
    // A folder of the product is installed with all that is in it.
    if (!isInProductFolder(deletingLastPathComponent(path))) noteHidden(part, path);
  };
  platform_.files.walk(mirror, {visit, hidden, [&](const Error& error) { noteUnreadable(part, error, mirror); }});
  return part;
}

std::vector<ProductFolder> Payload::productFolders(PayloadPart& part) const {
  std::vector<ProductFolder> folders;
  if (company_.empty()) return folders;
  const std::string makers = joinPath({hostIndependentFolder(), "Library", "Application Support", company_});
  const auto entries = platform_.files.entriesOf(makers);
  if (!entries) {
    noteUnreadable(part, entries.error(), makers);
    return folders;
  }
  const auto noteAll = [&](const std::vector<Error>& errors) {
    for (const Error& error : errors) noteUnreadable(part, error, makers);
  };
  noteAll(entries->unreadable);
  for (const WalkedItem& product : entries->visible) {
    if (product.isPackage || product.type != ItemType::folder) continue;
    auto content = platform_.files.entriesOf(product.path);
    if (!content) {
      noteUnreadable(part, content.error(), makers);
      continue;
    }
    noteAll(content->unreadable);
    ProductFolder folder{.path = product.path};
    for (WalkedItem& item : content->visible) {
      if (!item.isPackage) folder.items.push_back(std::move(item));
    }
    if (!folder.items.empty()) folders.push_back(std::move(folder));
  }
  return folders;
}

PayloadPart Payload::filesBelow(const std::string& folder) const {
  PayloadPart part;
  const auto visit = [&](const WalkedItem& item) {
    const bool isFile = item.type == ItemType::regularFile;
    if (item.isPackage || isFile) {
      part.items.push_back(item);
    } else if (item.type != ItemType::folder) {  // folders are created with their content
      part.skipped.push_back({item.path, SkippedEntry::Reason::noFileOrFolder});
    }
  };
  platform_.files.walk(folder, {visit, [&](const std::string& path) { noteHidden(part, path); },
                                [&](const Error& error) { noteUnreadable(part, error, folder); }});
  return part;
}
