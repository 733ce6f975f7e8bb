// SPDX-License-Identifier: Apache-2.0

#include "hosts/PathsFile.h"

#include <algorithm>

#include "foundation/Text.h"

namespace {

/// The field at the start of the data, which is at least one byte long: a zero there does not end it.
std::string_view firstField(std::string_view data) { return data.substr(0, std::min(data.find('\0', 1), data.size())); }

}  // namespace

PathsFile parsePathsFile(std::string_view data) {
  const std::string_view first = firstField(data);
  data.remove_prefix(std::min(first.size() + 1, data.size()));
  const std::string_view second = firstField(data);
  PathsFile file{.appFolder = decodeUtf8(first), .namesPlugInsFolder = !second.empty()};
  if (file.namesPlugInsFolder) file.plugInsFolder = decodeUtf8(second);
  return file;
}
