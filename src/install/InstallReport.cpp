#include "install/InstallReport.h"

#include <set>
#include <string_view>

std::size_t InstallReport::placeCount() const {
  return std::set<std::string_view>(installedPaths.begin(), installedPaths.end()).size();
}
