#include "hosts/HostModel.h"

Value HostModel::valueForKey(std::string_view key) const {
  if (key == "hostName") return hostName();
  if (key == "hostIsInstalled") return hostIsInstalled();
  if (key == "hostIsSelected") return hostIsSelected();
  if (key == "plugInPath") return plugInPath();
  if (key == "scriptsPath") return scriptsPath();
  if (key == "panelsPath") return panelsPath();
  if (key == "shouldInstallScripts") return shouldInstallScripts();
  if (key == "shouldInstallPanels") return shouldInstallPanels();
  if (key == "shouldInstallPlugIns") return shouldInstallPlugIns();
  if (key == "displaySortOrder") return static_cast<std::int64_t>(displaySortOrder());
  throw UnknownKey(key);
}
