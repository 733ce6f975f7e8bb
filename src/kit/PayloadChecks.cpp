// SPDX-License-Identifier: Apache-2.0

// What the bundle brings, and what of it is installed.
#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "payload/InstallerTexts.h"
#include "payload/Payload.h"

namespace {

constexpr std::array<std::string_view, 4> payloadParts = {"HD", "PHOTOSHOP", "PHOTOSHOP_PLUGINS", "LIGHTROOM"};
constexpr std::array<std::string_view, 3> hostParts = {"PHOTOSHOP", "PHOTOSHOP_PLUGINS", "LIGHTROOM"};

/// The path's first component below the folder; empty when it is the last one, too.
std::string folderBelow(std::string_view path, std::string_view folder) {
  if (!isAtOrBelow(path, folder) || path.size() <= folder.size()) return {};
  const std::string_view rest = path.substr(folder.size() + 1);
  const std::size_t end = rest.find('/');
  return end == std::string_view::npos ? std::string() : std::string(rest.substr(0, end));
}

class PayloadCheck {
 public:
  PayloadCheck(const InspectedBundle& bundle, Findings& findings)
      : bundle_(bundle),
        findings_(findings),
        payload_(bundle.platform(), bundle.fullPath(bundle.payloadFolder())),
        folder_(bundle.payloadFolder()),
        support_(joinPath(folder_, "HD/Library/Application Support")),
        company_(companyName(bundle.platform())) {}

  void run() {
    checkParts();
    PayloadPart mirror = payload_.packages(/*isLightRoomSelected=*/true);
    std::size_t count = mirror.items.size();
    for (const ProductFolder& folder : payload_.productFolders(mirror)) count += folder.items.size();
    reportSkipped(mirror);
    for (const WalkedItem& item : mirror.items) checkDestination(item);
    for (const std::string_view name : hostParts) {
      const PayloadPart part = payload_.filesBelow(payload_.folder(name));
      count += part.items.size();
      reportSkipped(part);
      for (const WalkedItem& item : part.items) checkPlace(item, name);
    }
    if (count == 0 && !isMisplaced_) findings_.add("payload.empty", {.file = folder_});
    for (const TreeItem& item : bundle_.items()) {
      const bool isPart = isAtOrBelow(item.path, folder_) && item.type == ItemType::other;
      if (isPart) findings_.add("payload.device", {.file = item.path});
    }
  }

 private:
  /// Everything directly in the payload's folder is one of its parts.
  void checkParts() {
    for (const TreeItem& item : bundle_.items()) {
      const std::string name = lastPathComponent(item.path);
      if (deletingLastPathComponent(item.path) != folder_) continue;
      const bool isPart = item.type == ItemType::folder && std::ranges::find(payloadParts, name) != payloadParts.end();
      if (isPart) continue;
      findings_.add("payload.part", {.file = item.path}, {name});
      isMisplaced_ |= item.type == ItemType::folder;
    }
  }

  void reportSkipped(const PayloadPart& part) {
    for (const auto reason :
         {SkippedEntry::Reason::notPartOfProduct, SkippedEntry::Reason::hidden, SkippedEntry::Reason::noFileOrFolder}) {
      for (const SkippedEntry& entry : part.skipped) {
        const std::string path = bundle_.relativePath(entry.path);
        // Without a company's name, which is a mistake by itself, everybody's folder is a stranger's.
        const bool isUnclear = company_.empty() && isAtOrBelow(path, support_);
        isMisplaced_ |= isUnclear || entry.reason == SkippedEntry::Reason::notPartOfProduct;
        if (entry.reason == reason && !isUnclear) reportSkipped(reason, path);
      }
    }
  }

  void reportSkipped(SkippedEntry::Reason reason, const std::string& path) {
    if (reason == SkippedEntry::Reason::notPartOfProduct) {
      reportLoose(path);
    } else if (reason == SkippedEntry::Reason::noFileOrFolder) {
      reportLink(path);
    } else if (!strangers_.contains(joinPath(support_, folderBelow(path, support_)))) {
      findings_.add("payload.hidden", {.file = path});
    }
  }

  void reportLink(const std::string& path) {
    const TreeItem* const item = bundle_.item(path);
    if (item != nullptr && item->type == ItemType::symbolicLink) findings_.add("payload.link", {.file = path});
  }

  void reportLoose(const std::string& path) {
    const std::string maker = folderBelow(path, support_);
    const std::string folder = joinPath(support_, maker);
    const std::string product = folderBelow(path, folder);
    // A whole folder of another name is one mistake, however many files it holds.
    if (!maker.empty() && maker != company_ && !product.empty()) {
      strangers_.insert(folder);
      findings_.add("payload.company-folder", {.file = folder}, {maker, company_});
    } else {
      findings_.add("payload.loose", {.file = path}, {company_});
    }
  }

  /// Root may install anywhere; the rights of anybody else end at a few folders.
  void checkDestination(const WalkedItem& item) {
    const std::string path = bundle_.relativePath(item.path);
    const std::string target = path.substr(folder_.size() + std::string_view("/HD").size());
    if (isAtOrBelow(target, "/Applications") || isAtOrBelow(target, "/Library/Application Support")) return;
    findings_.add("payload.root-only", {.file = path}, {deletingLastPathComponent(target)});
  }

  void checkPlace(const WalkedItem& item, std::string_view part) {
    const std::string path = bundle_.relativePath(item.path);
    const std::string_view type = pathExtension(item.path);
    const auto isType = [&](std::string_view wanted) { return equalIgnoringCase(type, wanted); };
    std::string_view right = part;
    if (isType("lrplugin") || isType("lrtemplate")) {
      right = "LIGHTROOM";
    } else if (isType("app") && deletingLastPathComponent(path) == joinPath(folder_, part)) {  // no plug-in's helper
      right = "HD/Applications";
    } else if ((isType("plugin") || isType("8bf")) && !isInPlugInFolder(path, part)) {
      right = "PHOTOSHOP_PLUGINS";
    }
    if (right != part) findings_.add("payload.misplaced", {.file = path}, {lastPathComponent(path), right, part});
  }

  /// Photoshop's application folder holds one for plug-ins, too.
  [[nodiscard]] bool isInPlugInFolder(const std::string& path, std::string_view part) const {
    return part == "PHOTOSHOP" && equalIgnoringCase(folderBelow(path, joinPath(folder_, part)), "Plug-ins");
  }

  const InspectedBundle& bundle_;
  Findings& findings_;
  Payload payload_;
  std::string folder_;
  std::string support_;              ///< the maker's folders lie in it
  std::string company_;              ///< as its folders are called
  std::set<std::string> strangers_;  ///< folders that should have this name, perhaps
  bool isMisplaced_ = false;         ///< there is a product, and another mistake keeps it from being installed
};

}  // namespace

void checkPayload(const InspectedBundle& bundle, Findings& findings) {
  if (bundle.hasPayloadFolder() || bundle.payloadFolder() == ownPayloadFolder) PayloadCheck(bundle, findings).run();
}
