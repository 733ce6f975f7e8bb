// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

/// The system's well-known folders, as paths of the target volume.
class Folders {
 public:
  Folders() = default;
  Folders(const Folders&) = delete;
  Folders& operator=(const Folders&) = delete;
  virtual ~Folders() = default;

  // Whether the folder exists or not:
  [[nodiscard]] virtual std::string homeDirectory() const = 0;
  [[nodiscard]] virtual std::string localApplications() const = 0;
  [[nodiscard]] virtual std::string localApplicationSupport() const = 0;
  [[nodiscard]] virtual std::string userApplicationSupport() const = 0;

  // Only when the folder exists:
  [[nodiscard]] virtual std::optional<std::string> findUserPreferences() const = 0;
  [[nodiscard]] virtual std::optional<std::string> findUserApplicationSupport() const = 0;
};
