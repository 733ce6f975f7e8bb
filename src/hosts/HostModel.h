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
/// An operation that means nothing for a kind raises UnknownKey, and so does its key: callers know which kinds they
/// ask.
class HostModel : public KeyValueCoding {
 public:
  /// What people call the host.
  [[nodiscard]] virtual std::string hostName() const = 0;

  /// Whether the host is there; only then is it offered.
  [[nodiscard]] virtual bool hostIsInstalled() const = 0;

  // Where the parts of the product go; empty for a part that this host takes none of.
  [[nodiscard]] virtual std::string plugInPath() const = 0;
  [[nodiscard]] virtual std::string scriptsPath() const = 0;
  [[nodiscard]] virtual std::string panelsPath() const = 0;

  [[nodiscard]] virtual bool shouldInstallScripts() const = 0;
  [[nodiscard]] virtual bool shouldInstallPanels() const = 0;

  /// The user's tick. Not answered by Fireworks.
  [[nodiscard]] virtual bool hostIsSelected() const { throw UnknownKey("hostIsSelected"); }
  virtual void setHostIsSelected(bool /*selected*/) { throw UnknownKey("hostIsSelected"); }

  /// The host list ascends by this. Not answered by Fireworks.
  [[nodiscard]] virtual std::uint64_t displaySortOrder() const { throw UnknownKey("displaySortOrder"); }

  /// Answered by Fireworks and the custom folder.
  [[nodiscard]] virtual bool shouldInstallPlugIns() const { throw UnknownKey("shouldInstallPlugIns"); }

  /// Every operation above, by its name.
  [[nodiscard]] Value valueForKey(std::string_view key) const override;
};

using HostList = std::vector<std::shared_ptr<HostModel>>;
