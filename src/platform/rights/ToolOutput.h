#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/Authorization.h"
#include "platform/posix/FileDescriptor.h"

/// The reading end of a pipe that is a tool's standard output.
class ToolOutput : public CommunicationsPipe {
 public:
  explicit ToolOutput(FileDescriptor reading) : reading_(std::move(reading)) {}

  std::size_t read(char* bytes, std::size_t size) override {
    std::size_t got = 0;
    while (got < size) {
      const ssize_t length = ::read(reading_.get(), bytes + got, size - got);
      if (length < 0 && errno == EINTR) continue;
      if (length <= 0) break;
      got += static_cast<std::size_t>(length);
    }
    return got;
  }

 private:
  FileDescriptor reading_;
};
