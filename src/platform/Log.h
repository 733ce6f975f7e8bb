// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

/// The system log.
class Log {
 public:
  Log() = default;
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  virtual ~Log() = default;

  /// Adds one line. Line ends and control characters in the message are written as escapes.
  virtual void write(std::string_view message) = 0;
};
