// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Text.h"
#include "foundation/Value.h"

/// A folder laid out as an application, plug-in or other bundle: "Contents" with its Info.plist, resources and
/// shared-support files. Treats damaged parts as missing.
class Bundle {
 public:
  Bundle() = default;
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;
  virtual ~Bundle() = default;

  [[nodiscard]] virtual std::string bundlePath() const = 0;
  [[nodiscard]] virtual std::string resourcePath() const = 0;
  [[nodiscard]] virtual std::string sharedSupportPath() const = 0;

  /// Returns a value of the info dictionary (Info.plist), or none.
  [[nodiscard]] virtual Value infoValue(std::string_view key) const = 0;

  /// The text for the key in the table, in the first of the user's languages that the bundle has, else in English; the
  /// fallback when the table has no such key.
  [[nodiscard]] virtual std::string localizedString(std::string_view key, std::string_view fallback,
                                                    std::string_view table) const = 0;
  [[nodiscard]] std::string localizedString(std::string_view key) const {
    return localizedString(key, "", "Localizable");
  }

  /// The placeholders for names in texts, and the names of the table "installer" that they stand for.
  using Names = std::array<std::pair<std::string_view, std::string>, 2>;
  [[nodiscard]] Names names() const {
    return {{{"%PRODUCTNAME%", localizedString("product_name", "", "installer")},
             {"%COMPANYNAME%", localizedString("company_name", "", "installer")}}};
  }
  [[nodiscard]] std::string withNames(std::string text) const {
    if (text.find('%') == std::string::npos) return text;
    for (const auto& [placeholder, name] : names()) text = replacingOccurrences(text, placeholder, name);
    return text;
  }

  /// The file NAME.TYPE of the resources, in the first of the user's languages that has one, else in English, else
  /// outside the languages; nothing when there is none.
  [[nodiscard]] virtual std::optional<std::string> pathForResource(std::string_view name,
                                                                   std::string_view type) const = 0;
};

class Bundles {
 public:
  Bundles() = default;
  Bundles(const Bundles&) = delete;
  Bundles& operator=(const Bundles&) = delete;
  virtual ~Bundles() = default;

  /// The installer's own bundle.
  [[nodiscard]] virtual const Bundle& mainBundle() const = 0;

  /// Returns the folder at the path as a bundle, with or without an Info.plist; null when there is no folder.
  [[nodiscard]] virtual std::unique_ptr<Bundle> bundleAtPath(const std::string& path) const = 0;
};
