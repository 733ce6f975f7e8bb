// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/StringsTable.h"
#include "foundation/Value.h"
#include "platform/Platform.h"

/// An installer's bundle as checks look at it: everything in it, and the payload beside it, at one moment. Paths are
/// relative to the bundle.
class InspectedBundle {
 public:
  /// Inspects the main bundle of the platform.
  explicit InspectedBundle(Platform& platform);

  [[nodiscard]] Platform& platform() const { return platform_; }
  [[nodiscard]] const std::vector<TreeItem>& items() const { return items_; }
  /// Null when there is no such item.
  [[nodiscard]] const TreeItem* item(const std::string& path) const;
  [[nodiscard]] std::string fullPath(std::string_view path) const;
  [[nodiscard]] std::string relativePath(const std::string& fullPath) const;
  /// The whole file; nothing when it cannot be read.
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const;

  /// A table of texts, as it was written or as a build has compiled it. Empty when there is none.
  [[nodiscard]] StringsTable table(const std::string& path) const;

  /// Names of the languages that have a folder and are offered; English always is, as what others lack.
  [[nodiscard]] const std::vector<std::string>& languages() const { return languages_; }
  [[nodiscard]] bool hasLanguage(std::string_view language) const;
  /// The language of whoever's own is not offered.
  [[nodiscard]] std::string fallbackLanguage() const;
  /// Path of a file of a language.
  [[nodiscard]] static std::string localized(std::string_view language, std::string_view file);

  /// Path of the folder with the payload: in the bundle, or beside it where it waits for being packed.
  [[nodiscard]] const std::string& payloadFolder() const { return payloadFolder_; }
  [[nodiscard]] bool hasPayloadFolder() const;

  /// The table that says what the installer installs. Half a table makes wrong findings.
  [[nodiscard]] const StringsTable& settings() const { return settings_; }
  [[nodiscard]] bool hasWholeSettings() const;
  /// A text of the table that says what the installer installs; empty when it is missing.
  [[nodiscard]] const std::string& setting(std::string_view key) const;

  /// A bundle's info dictionary, or none. `bundle` may be empty: the installer's own.
  [[nodiscard]] Value info(const std::string& bundle) const;

 private:
  void findLanguages();

  Platform& platform_;
  std::vector<TreeItem> items_;
  std::map<std::string_view, const TreeItem*> byPath_;
  std::vector<std::string> languages_;
  StringsTable settings_;
  std::string payloadFolder_;
};

inline constexpr std::string_view resourcesFolder = "Contents/Resources";
inline constexpr std::string_view ownPayloadFolder = "Contents/Resources/files";
inline constexpr std::string_view settingsTable = "Contents/Resources/en.lproj/installer.strings";
