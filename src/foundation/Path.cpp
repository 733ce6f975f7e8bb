// SPDX-License-Identifier: Apache-2.0

#include "foundation/Path.h"

namespace {

std::string_view withoutTrailingSeparators(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

void appendComponent(std::string& path, std::string_view component) {
  if (component.empty()) return;
  if (!path.empty() && !path.ends_with('/')) path += '/';
  for (const char c : component) {
    if (c != '/' || !path.ends_with('/')) path += c;
  }
  path.resize(withoutTrailingSeparators(path).size());
}

}  // namespace

std::string joinPath(std::initializer_list<std::string_view> components) {
  std::string path;
  for (const std::string_view component : components) appendComponent(path, component);
  return path;
}

std::string joinPath(std::string_view folder, std::string_view name) { return joinPath({folder, name}); }

std::string lastPathComponent(std::string_view path) {
  path = withoutTrailingSeparators(path);
  if (path == "/") return "/";
  return std::string(path.substr(path.rfind('/') + 1));
}

std::string deletingLastPathComponent(std::string_view path) {
  path = withoutTrailingSeparators(path);
  const std::size_t separator = path.rfind('/');
  if (separator == std::string_view::npos) return {};
  return joinPath({path.substr(0, separator == 0 ? 1 : separator)});
}

std::string_view pathExtension(std::string_view path) {
  path = withoutTrailingSeparators(path);
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const std::size_t stop = name.rfind('.');
  if (stop == std::string_view::npos || stop == 0) return {};
  return name.substr(stop + 1);
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  folder = withoutTrailingSeparators(folder);
  if (folder.empty()) return false;
  if (folder == "/") return path.starts_with('/');
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string fileUrl(std::string_view path) {
  constexpr std::string_view hex = "0123456789ABCDEF";
  constexpr std::string_view kept = "/-._~!$&'()*+,=:@";
  std::string url = "file://";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (isPlain || kept.find(c) != std::string_view::npos) {
      url += c;
    } else {
      url += '%';
      url += hex[byte >> 4U];
      url += hex[byte & 0xFU];
    }
  }
  return url;
}
