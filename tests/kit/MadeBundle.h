// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Finding.h"
#include "support/TestMachine.h"

/// A Mac executable for these architectures that holds nothing but what a check looks at.
struct MadeMachO {
  bool isForApple = true;
  bool isForIntel = true;
  unsigned minimumSystem = 11;
  bool isSigned = true;
};
[[nodiscard]] std::string machO(const MadeMachO& made);

/// An installer's bundle in a temporary folder: resources of the sample in two languages, and a small payload of
/// every kind. Nothing is wrong with it at first. Paths are relative to Contents/Resources, or begin with "..".
class MadeBundle {
 public:
  MadeBundle();

  [[nodiscard]] const fs::path& path() const { return path_; }
  [[nodiscard]] fs::path at(const std::string& path) const { return path_ / "Contents/Resources" / path; }
  [[nodiscard]] fs::path payload(const std::string& path) const { return at("files") / path; }

  void write(const std::string& path, std::string_view content) const { writeFile(at(path), content); }
  [[nodiscard]] std::string read(const std::string& path) const { return readFile(at(path)); }
  /// Replaces a text that must be there; "$&" in the new one stands for it.
  void edit(const std::string& path, std::string_view what, std::string_view with) const;
  void remove(const std::string& path) const;
  void rename(const std::string& from, const std::string& to) const { fs::rename(at(from), at(to)); }
  void mode(const std::string& path, unsigned permissions) const;

  [[nodiscard]] std::vector<Finding> findings() const;

 private:
  void makePayload() const;

  TemporaryFolder folder_;
  fs::path path_ = folder_.path() / "Installer.app";
};

using Change = std::function<void(const MadeBundle&)>;
inline Change removing(const std::string& path) {
  return [=](const MadeBundle& b) { b.remove(path); };
}
inline Change renaming(const std::string& from, const std::string& to) {
  return [=](const MadeBundle& b) { b.rename(from, to); };
}
inline Change settingMode(const std::string& path, unsigned permissions) {
  return [=](const MadeBundle& b) { b.mode(path, permissions); };
}
inline Change configuring(const std::string& key, const std::string& value) {
  return [=](const MadeBundle& b) { configure(b.path(), key, value); };
}
inline Change writing(const std::string& path, const std::string& content) {
  return [=](const MadeBundle& b) { b.write(path, content); };
}
inline Change editing(const std::string& path, const std::string& what, const std::string& with) {
  return [=](const MadeBundle& b) { b.edit(path, what, with); };
}

/// A mistake, and how it is found.
struct Mistake {
  std::string_view id;
  std::string place;
  std::string_view fix;  ///< a part of what is advised
  Change make;
};
[[nodiscard]] const std::vector<Mistake>& resourceMistakes();
[[nodiscard]] const std::vector<Mistake>& payloadMistakes();
