// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/StringsTable.h"
#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Log.h"
#include "platform/User.h"

/// A bundle as it lies on the disk. Its info dictionary and its tables are read when they are first asked for.
class BundleOnDisk : public Bundle {
 public:
  BundleOnDisk(std::string path, const FileSystem& files, const User& user, Log& log);

  [[nodiscard]] std::string bundlePath() const override { return path_; }
  [[nodiscard]] std::string resourcePath() const override;
  [[nodiscard]] std::string sharedSupportPath() const override;
  [[nodiscard]] Value infoValue(std::string_view key) const override;
  using Bundle::localizedString;
  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view fallback,
                                            std::string_view table) const override;
  [[nodiscard]] std::optional<std::string> pathForResource(std::string_view name, std::string_view type) const override;

 protected:
  using Texts = std::map<std::string, std::string, std::less<>>;
  /// The languages in which a resource of this name is looked for before English.
  [[nodiscard]] virtual std::vector<std::string> languagesFor(std::string_view name) const;
  /// Where a resource may lie, in the order in which its places are looked at.
  [[nodiscard]] std::vector<std::string> pathsOfResource(std::string_view name, std::string_view type) const;
  [[nodiscard]] virtual Texts readTable(std::string_view table) const;
  [[nodiscard]] std::optional<Texts> readTableFile(const std::string& path) const;

 private:
  [[nodiscard]] const Texts& textsOfTable(std::string_view table) const;
  [[nodiscard]] Value readInfo() const;

  std::string path_;
  const FileSystem& files_;
  const User& user_;
  Log& log_;
  mutable std::optional<Value> info_;
  mutable std::map<std::string, Texts, std::less<>> tables_;
};

/// Whether the text can be the name of one item in a folder.
[[nodiscard]] bool isFileName(const std::string& name);

/// Path of the icon that the bundle at the path names; empty when it has none.
[[nodiscard]] std::string iconFileOf(const std::string& path, const Bundles& bundles, const FileSystem& files);
