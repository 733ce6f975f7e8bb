// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>

/// The system's database of applications.
class LaunchServices {
 public:
  // Results of registering, in the system's numbering:
  static constexpr std::int32_t noErr = 0;
  static constexpr std::int32_t fnfErr = -43;  ///< nothing at the path
  static constexpr std::int32_t kLSNotAnApplicationErr = -10811;
  static constexpr std::int32_t kLSNoExecutableErr = -10827;
  static constexpr std::int32_t kLSServerCommunicationErr = -10822;  ///< the database cannot be changed

  LaunchServices() = default;
  LaunchServices(const LaunchServices&) = delete;
  LaunchServices& operator=(const LaunchServices&) = delete;
  virtual ~LaunchServices() = default;

  /// Registers the application bundle at the path; with `update`, also when it is registered already.
  virtual std::int32_t registerApplication(const std::string& path, bool update) = 0;

  /// The application bundle of that identifier is not at the path any more. A system that finds out by itself has
  /// nothing to do.
  virtual void forgetApplication(const std::string& /*path*/, const std::string& /*identifier*/) {}
};
