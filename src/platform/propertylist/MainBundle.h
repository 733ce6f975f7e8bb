// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/propertylist/BundleOnDisk.h"

/// The installer's own bundle. The strings table "installer" is its configuration: what it says takes precedence over
/// the info dictionary, its names take the place of %PRODUCTNAME% and %COMPANYNAME% in all texts, and it may offer
/// fewer languages than there are.
///
/// A language may have a table "installer" of its own, with the keys that differ.
class MainBundle : public BundleOnDisk {
 public:
  using BundleOnDisk::BundleOnDisk;

  [[nodiscard]] Value infoValue(std::string_view key) const override;
  using Bundle::localizedString;
  [[nodiscard]] std::string localizedString(std::string_view key, std::string_view fallback,
                                            std::string_view table) const override;

 protected:
  [[nodiscard]] std::vector<std::string> languagesFor(std::string_view table) const override;
  [[nodiscard]] Texts readTable(std::string_view table) const override;

 private:
  [[nodiscard]] std::string configured(std::string_view key) const;
};
