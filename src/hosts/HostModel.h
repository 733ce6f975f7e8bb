// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/KeyValueCoding.h"

/// One application, or folder, that the product can be installed into. Kinds that need a treatment of their own are
/// told apart by class.
///
/// Every kind has every operation. Where one means nothing for a kind, it answers what changes nothing, and its key is
/// unknown.
class HostModel : public KeyValueCoding {
 public:
  /// What people call the host.
  [[nodiscard]] virtual std::string hostName() const = 0;

  /// Whether the host is there; only then is it offered.
  [[nodiscard]] virtual bool hostIsInstalled() const = 0;

  /// The folder of its application; empty when there is none, or when nothing goes there.
  [[nodiscard]] virtual std::string appPath() const { return {}; }

  // Where the parts of the product go; empty for a part that this host takes none of.
  [[nodiscard]] virtual std::string plugInPath() const = 0;
  [[nodiscard]] virtual std::string scriptsPath() const = 0;
  [[nodiscard]] virtual std::string panelsPath() const = 0;

  [[nodiscard]] virtual bool shouldInstallScripts() const = 0;
  [[nodiscard]] virtual bool shouldInstallPanels() const = 0;

  /// The user's tick.
  [[nodiscard]] virtual bool hostIsSelected() const { return false; }
  virtual void setHostIsSelected(bool /*selected*/) {}

  /// The host list ascends by this.
  [[nodiscard]] virtual std::uint64_t displaySortOrder() const { return 0; }

  [[nodiscard]] virtual bool shouldInstallPlugIns() const { return true; }

  /// Every operation above that means something for this kind, by its name.
  [[nodiscard]] Value valueForKey(std::string_view key) const override;

 protected:
  /// Whether the operation of that name means something for this kind.
  [[nodiscard]] virtual bool answers(std::string_view key) const { return key != "shouldInstallPlugIns"; }
};

using HostList = std::vector<std::shared_ptr<HostModel>>;
