#pragma once

#include <stdexcept>
#include <string>

/// Raised where the program's own conventions ask for it: launching a task, decoding its output, writing to an open
/// file. what() is the reason, in words for the log.
class Exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
