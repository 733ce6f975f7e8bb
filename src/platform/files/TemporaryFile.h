// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"

/// A file that is written under a hidden name beside its place and then takes the place in one step. A place always has
/// the same hidden name, so the next writer reuses what a killed process left. Concurrent writers take turns.
class TemporaryFile {
 public:
  /// Opens the empty file for writing, in an open folder; `name` is that of its place. `subject` names it in errors.
  static Result<TemporaryFile> open(int folder, const std::string& name, const std::string& subject);
  TemporaryFile(TemporaryFile&&) noexcept = default;
  TemporaryFile& operator=(TemporaryFile&&) = delete;
  /// Removes the file, unless it is in place.
  ~TemporaryFile();

  [[nodiscard]] int handle() const { return file_.get(); }

  /// Writes all of the content or fails.
  Status write(std::string_view content);

  /// Flushes the file to the medium and moves it to its place, over what is there.
  Status putInPlace() &&;

 private:
  TemporaryFile(int folder, std::string name, std::string hiddenName, std::string subject, FileDescriptor file);

  int folder_;
  std::string name_;
  std::string hiddenName_;
  std::string subject_;
  FileDescriptor file_;  ///< holds the lock
};
