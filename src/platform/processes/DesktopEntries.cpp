// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/DesktopEntries.h"

#include <algorithm>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"

namespace {

/// A value of a desktop entry: backslashes and what would end the line are escaped.
std::string escapedValue(std::string_view text) {
  std::string value;
  for (const char c : text) {
    if (c == '\\') {
      value += "\\\\";
    } else if (c == '\n') {
      value += "\\n";
    } else if (c == '\r') {
      value += "\\r";
    } else if (c == '\t') {
      value += "\\t";
    } else {
      value += c;
    }
  }
  return value;
}

/// An argument of a command line, in quotes: as a shell would read it, and with per-cent signs doubled.
std::string quotedArgument(std::string_view text) {
  std::string argument = "\"";
  for (const char c : text) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') argument += '\\';
    if (c == '%') argument += '%';
    argument += c;
  }
  return argument + '"';
}

/// The entry's file name: the identifier, reduced to what such names are made of.
std::string entryFileName(std::string identifier) {
  constexpr std::size_t longest = 200;
  identifier.resize(std::min(identifier.size(), longest));
  for (char& c : identifier) {
    const bool isPlain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_';
    if (!isPlain) c = '-';
  }
  if (identifier.starts_with('.')) identifier.front() = '-';
  return identifier + ".desktop";
}

}  // namespace

std::optional<std::string> desktopEntry(const std::string& name, const std::string& executable) {
  // An equals sign in the program's path is forbidden, and a control character breaks the line.
  if (executable.find('=') != std::string::npos || onOneLine(executable) != executable) return std::nullopt;
  return "[Desktop Entry]\nType=Application\nVersion=1.0\nName=" + escapedValue(name) +
         "\nExec=" + escapedValue(quotedArgument(executable)) + "\nTerminal=false\nCategories=Graphics;\n";
}

std::string applicationsFolderIn(const std::string& home) { return joinPath(home, ".local/share/applications"); }

DesktopEntries::DesktopEntries(const Volume& volume, FileSystem& files, const Bundles& bundles,
                               std::string applicationsFolder)
    : volume_(volume), files_(files), bundles_(bundles), applicationsFolder_(std::move(applicationsFolder)) {}

std::int32_t DesktopEntries::registerApplication(const std::string& path, bool update) {
  const auto bundle = bundles_.bundleAtPath(path);
  if (bundle == nullptr) return fnfErr;
  if (!equalIgnoringCase(pathExtension(path), "app")) return kLSNotAnApplicationErr;

  const auto firstText = [&](std::initializer_list<const char*> keys) {
    for (const char* const key : keys) {
      if (std::string text = bundle->infoValue(key).text(); !text.empty()) return text;
    }
    const std::string fileName = lastPathComponent(path);
    return fileName.substr(0, fileName.size() - std::string_view(".app").size());
  };
  const std::string executable = joinPath({path, "Contents/MacOS", firstText({"CFBundleExecutable"})});
  const auto attributes = files_.attributesOfItem(executable);
  if (!attributes || attributes->type != ItemType::regularFile || (attributes->permissions & 0111U) == 0) {
    return kLSNoExecutableErr;
  }

  const std::string entry = joinPath(applicationsFolder_, entryFileName(firstText({"CFBundleIdentifier"})));
  if (!update && files_.exists(entry)) return noErr;
  const auto real = volume_.realPath(executable, Volume::LastLink::keep, Volume::Purpose::look);
  const auto text = real ? desktopEntry(firstText({"CFBundleDisplayName", "CFBundleName"}), *real) : std::nullopt;
  if (!text || !files_.createDirectory(applicationsFolder_, 0755) || !files_.createFile(entry, *text, 0644)) {
    return kLSServerCommunicationErr;
  }
  return noErr;
}

void DesktopEntries::forgetApplication(const std::string& path, const std::string& identifier) {
  const std::string entry = joinPath(applicationsFolder_, entryFileName(identifier));
  const auto real = volume_.realPath(path, Volume::LastLink::keep, Volume::Purpose::look);
  constexpr std::size_t largestEntry = 65536;
  const auto text = files_.readFile(entry, largestEntry);
  if (!real || !text) return;
  // Another application may have registered itself under the same identifier.
  std::string executable = escapedValue(quotedArgument(joinPath(*real, "Contents/MacOS")));
  executable.pop_back();
  const bool isIts = text->find("\nExec=" + executable + "/") != std::string::npos;
  if (isIts) ignore(files_.removeItem(entry));  // an entry that stays leads nowhere, and menus leave it out
}
