#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

// Paths are texts: "/"-separated, UTF-8. Nothing here looks at a disk.

/// Joins component by component with one separator between them. An empty component vanishes, several separators in a
/// row count as one, and a separator at the end of the result is dropped unless the path is "/" itself.
[[nodiscard]] std::string joinPath(std::initializer_list<std::string_view> components);
[[nodiscard]] std::string joinPath(std::string_view folder, std::string_view name);

/// The name of the item that the path leads to ("/a/b/" gives "b", "/" gives "/").
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// The path of the folder that holds the item ("/a/b" gives "/a", "/a" gives "/", "a" gives "").
[[nodiscard]] std::string deletingLastPathComponent(std::string_view path);

/// What follows the last full stop of the last component, without it; empty for ".hidden" and "name.".
[[nodiscard]] std::string_view pathExtension(std::string_view path);

/// Whether `path` is `folder` or lies below it, compared as text.
[[nodiscard]] bool isAtOrBelow(std::string_view path, std::string_view folder);

/// The path as a file URL; bytes that a URL cannot hold are percent-encoded.
[[nodiscard]] std::string fileUrl(std::string_view path);
