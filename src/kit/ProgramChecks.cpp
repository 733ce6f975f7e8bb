// SPDX-License-Identifier: Apache-2.0

// Programs and plug-ins of the payload: what processors and systems they are for, and their versions.
#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>

#include "foundation/MachO.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "install/BundleVersion.h"
#include "kit/Checks.h"

namespace {

/// Processors of the Macs that the host applications run on.
constexpr std::array<std::string_view, 2> hostArchitectures = {"arm64", "x86_64"};

constexpr std::array<std::string_view, 6> bundlesOfCode = {"app", "plugin", "8bf", "component", "appex", "xpc"};
constexpr std::array<std::string_view, 2> bundlesOfScripts = {"lrplugin", "lrdevplugin"};

bool isOfTypes(const auto& types, std::string_view type) {
  return std::ranges::any_of(types, [&](std::string_view known) { return equalIgnoringCase(known, type); });
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

class ProgramCheck {
 public:
  ProgramCheck(const InspectedBundle& bundle, Findings& findings)
      : bundle_(bundle),
        findings_(findings),
        minimum_(entryOf(bundle.info(""), "LSMinimumSystemVersion").text()),
        product_(bundle.setting("product_version").empty()
                     ? entryOf(bundle.info(""), "CFBundleShortVersionString").text()
                     : bundle.setting("product_version")) {}

  void run() {
    for (const TreeItem& item : bundle_.items()) {
      if (!isAtOrBelow(item.path, bundle_.payloadFolder())) continue;
      if (item.isPackage) checkBundle(item);
      if (item.type == ItemType::regularFile) checkCode(item);
    }
  }

 private:
  void checkBundle(const TreeItem& item) {
    const std::string_view type = pathExtension(item.path);
    if (isOfTypes(bundlesOfScripts, type)) return checkScripts(item);
    const bool isCode = isOfTypes(bundlesOfCode, type);
    const std::string list = joinPath(item.path, "Contents/Info.plist");
    const Value info = bundle_.info(item.path);
    if (info.as<Value::Dictionary>() == nullptr) {
      if (isCode || equalIgnoringCase(type, "bundle")) {
        findings_.add("programs.no-info", {.file = list},
                      {"Info.plist", "Write a property list that is a dictionary."});
      }
      return;
    }
    checkExecutable(item, info, isCode);
    if (!isPartOfOther(item.path)) checkVersion(list, entryOf(info, "CFBundleVersion").text());
  }

  /// Lightroom reads its plug-ins in either place.
  void checkScripts(const TreeItem& item) {
    const std::string list = joinPath(item.path, "Info.lua");
    if (bundle_.item(list) != nullptr) return;
    if (bundle_.item(joinPath(item.path, "Contents/Resources/Info.lua")) != nullptr) return;
    findings_.add("programs.no-info", {.file = list}, {"Info.lua", "Put the description of the plug-in there."});
  }

  /// Whether the bundle lies in another one, with which it is replaced.
  [[nodiscard]] bool isPartOfOther(const std::string& path) const {
    for (std::string at = deletingLastPathComponent(path); at.size() > bundle_.payloadFolder().size();
         at = deletingLastPathComponent(at)) {
      const TreeItem* const holder = bundle_.item(at);
      if (holder != nullptr && holder->isPackage) return true;
    }
    return false;
  }

  void checkExecutable(const TreeItem& item, const Value& info, bool isNeeded) {
    const std::string name = entryOf(info, "CFBundleExecutable").text();
    if (name.empty() && !isNeeded) return;
    const std::string path = joinPath({item.path, "Contents/MacOS", name});
    const TreeItem* const program = name.empty() ? nullptr : bundle_.item(path);
    if (program == nullptr) {
      return findings_.add("programs.missing",
                           {.file = joinPath(item.path, "Contents/Info.plist"), .key = "CFBundleExecutable"}, {name});
    }
    const std::string start = startOf(path);
    const bool isScript = start.starts_with("#!");
    if (isScript || architecturesOfMachO(start)) return;
    if (start.starts_with("\x7F"
                          "ELF") &&
        isForLinux(info))
      return;
    findings_.add("programs.kind", {.file = path},
                  {start.starts_with("\x7F"
                                     "ELF")
                       ? "for Linux"
                       : "no program"});
  }

  /// An application to try the installer with, where it says so itself.
  static bool isForLinux(const Value& info) {
    const Value platforms = entryOf(info, "CFBundleSupportedPlatforms");
    const auto* const names = platforms.as<Value::Array>();
    return names != nullptr && std::ranges::find(*names, Value("Linux")) != names->end();
  }

  void checkVersion(const std::string& list, const std::string& version) {
    const Place place{.file = list, .key = "CFBundleVersion"};
    if (version.empty()) return findings_.add("versions.none", place);
    const auto parts = split(version, '.');
    for (const std::string_view part : parts) {
      if (!isNumber(part))
        return findings_.add("versions.part", place, {version, part, BundleVersion::parse(version).digits()});
      constexpr std::size_t mostDigits = 4;
      const bool isFirst = part.data() == version.data();
      if (!isFirst && part.size() > mostDigits) return findings_.add("versions.long", place, {version, part});
    }
    // A version with fewer parts counts as older than any with more, whatever they say. The product's own tells how
    // many there were, and bundles that go by it begin like it.
    const auto wanted = split(product_, '.');
    if (parts.size() >= wanted.size() || parts.front() != wanted.front()) return;
    std::string longer = version;
    for (std::size_t i = parts.size(); i < wanted.size(); ++i) longer += ".0";
    findings_.add("versions.parts", place, {version, product_, longer});
  }

  void checkCode(const TreeItem& item) {
    if (!architecturesOfMachO(startOf(item.path))) return;
    const auto parts = partsOfMachO(bundle_.read(item.path).value_or(""));
    if (!parts) return;
    std::string all;
    std::set<std::string_view> architectures;
    for (const MachOPart& part : *parts) {
      architectures.insert(part.architecture);
      all += (all.empty() ? "" : ", ") + part.architecture;
      if (!part.isWhole) return findings_.add("programs.damaged", {.file = item.path}, {part.architecture});
      if (isNewer(part.minimumSystem)) {
        findings_.add("programs.minimum-system", {.file = item.path}, {part.minimumSystem, minimum_});
      }
      if (!part.isSigned) findings_.add("programs.unsigned", {.file = item.path});
    }
    for (const std::string_view wanted : hostArchitectures) {
      if (!architectures.contains(wanted)) findings_.add("programs.architecture", {.file = item.path}, {wanted, all});
    }
  }

  /// Than the system that the installer says it needs.
  [[nodiscard]] bool isNewer(std::string_view system) const {
    if (system.empty() || minimum_.empty()) return false;
    const auto parts = split(system, '.');
    const auto limit = split(minimum_, '.');
    for (std::size_t i = 0; i < std::max(parts.size(), limit.size()); ++i) {
      const std::int64_t part = i < parts.size() ? integerValue(parts[i]) : 0;
      const std::int64_t most = i < limit.size() ? integerValue(limit[i]) : 0;
      if (part != most) return part > most;
    }
    return false;
  }

  [[nodiscard]] std::string startOf(const std::string& path) const {
    return bundle_.platform().files.readFile(bundle_.fullPath(path), machOHeaderBytes).valueOr({});
  }

  const InspectedBundle& bundle_;
  Findings& findings_;
  std::string minimum_;  ///< system that the installer needs
  std::string product_;  ///< version of the product
};

}  // namespace

void checkPrograms(const InspectedBundle& bundle, Findings& findings) { ProgramCheck(bundle, findings).run(); }
