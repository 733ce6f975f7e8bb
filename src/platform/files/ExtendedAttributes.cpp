// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/files/SystemCalls.h"

namespace {

constexpr std::size_t usualListSize = 4096;

/// The names, each with a NUL behind it. Fails with an errno value.
Result<std::string> attributeNames(int item) {
  std::string names(usualListSize, '\0');
  ssize_t length = listAttributes(item, names.data(), names.size());
  if (length < 0 && errno == ERANGE) {
    length = listAttributes(item, nullptr, 0);
    if (length < 0) return systemError(errno, "");
    names.resize(static_cast<std::size_t>(length));
    length = listAttributes(item, names.data(), names.size());
  }
  if (length < 0 && errno == ENOTSUP) return std::string();
  if (length < 0) return systemError(errno, "");
  names.resize(static_cast<std::size_t>(length));
  return names;
}

}  // namespace

Result<std::map<std::string, std::string>> extendedAttributes(int item) {
  const auto names = attributeNames(item);
  if (!names) return names.error();
  std::map<std::string, std::string> attributes;
  for (std::string_view rest = *names; !rest.empty();) {
    const std::string name(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (!isOfContent(name)) continue;
    const ssize_t size = readAttribute(item, name.c_str(), nullptr, 0);
    if (size < 0) return systemError(errno, "");
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t got = readAttribute(item, name.c_str(), value.data(), value.size());
    if (got < 0) return systemError(errno, "");
    value.resize(static_cast<std::size_t>(got));
    attributes.emplace(name, std::move(value));
  }
  return attributes;
}

int copyExtendedAttributes(int source, int target, bool losesQuarantine) {
  const auto attributes = extendedAttributes(source);
  if (!attributes) return attributes.error().code;
  for (const auto& [name, value] : *attributes) {
    if (losesQuarantine && name.ends_with(quarantineMark)) continue;
    const int error = writeAttribute(target, name.c_str(), value.data(), value.size());
    if (error != 0) return error == ENOTSUP ? 0 : error;
  }
  return 0;
}
