// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <stdexcept>
#include <string>

/// Thrown by the few operations that report failure this way: launching a task, decoding its output, writing to an open
/// file. what() is the reason, as text for the log.
class Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
