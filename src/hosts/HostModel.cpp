// SPDX-License-Identifier: Apache-2.0

#include "hosts/HostModel.h"

#include "foundation/KeyTable.h"

namespace {

struct Key {
  std::string_view key;
  Value (*value)(const HostModel&);
};
template <auto answer>
Value valueOf(const HostModel& host) {
  return (host.*answer)();
}
constexpr Key keys[] = {{"hostName", valueOf<&HostModel::hostName>},
                        {"hostIsInstalled", valueOf<&HostModel::hostIsInstalled>},
                        {"hostIsSelected", valueOf<&HostModel::hostIsSelected>},
                        {"appPath", valueOf<&HostModel::appPath>},
                        {"plugInPath", valueOf<&HostModel::plugInPath>},
                        {"scriptsPath", valueOf<&HostModel::scriptsPath>},
                        {"panelsPath", valueOf<&HostModel::panelsPath>},
                        {"shouldInstallScripts", valueOf<&HostModel::shouldInstallScripts>},
                        {"shouldInstallPanels", valueOf<&HostModel::shouldInstallPanels>},
                        {"shouldInstallPlugIns", valueOf<&HostModel::shouldInstallPlugIns>},
                        {"displaySortOrder", [](const HostModel& host) {
                           return Value(static_cast<std::int64_t>(host.displaySortOrder()));
                         }}};

}  // namespace

Value HostModel::valueForKey(std::string_view key) const {
  const auto* const entry = entryFor(keys, key);
  if (entry == nullptr || !answers(key)) throw UnknownKey(key);
  return entry->value(*this);
}
