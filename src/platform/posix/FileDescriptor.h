// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <unistd.h>

#include <utility>

/// Owns an open descriptor.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
      close();
      descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
  }
  ~FileDescriptor() { close(); }

  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }
  [[nodiscard]] explicit operator bool() const { return descriptor_ >= 0; }

  void close() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }

 private:
  int descriptor_ = -1;
};
