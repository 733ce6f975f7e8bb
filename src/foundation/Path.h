// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// Paths are UTF-8 texts separated by "/". No function here accesses a disk.

/// Joins the components with one separator between them. Drops empty components, repeated separators, and a separator
/// at the end unless the result is "/".
[[nodiscard]] std::string joinPath(std::initializer_list<std::string_view> components);
[[nodiscard]] std::string joinPath(std::string_view folder, std::string_view name);

/// Returns the last component ("/a/b/" gives "b", "/" gives "/").
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// Returns the path of the parent folder ("/a/b" gives "/a", "/a" gives "/", "a" gives "").
[[nodiscard]] std::string deletingLastPathComponent(std::string_view path);

/// Returns the text after the last full stop of the last component; empty for ".hidden" and "name.".
[[nodiscard]] std::string_view pathExtension(std::string_view path);

/// Whether `path` is `folder` or lies below it, compared as text.
[[nodiscard]] bool isAtOrBelow(std::string_view path, std::string_view folder);

/// Returns the path as a file URL, with percent-encoding where it is needed.
[[nodiscard]] std::string fileUrl(std::string_view path);
