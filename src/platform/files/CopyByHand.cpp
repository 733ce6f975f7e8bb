// SPDX-License-Identifier: Apache-2.0

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "platform/files/SystemCalls.h"

int copyByHand(int source, int target, std::int64_t offset, std::int64_t length) {
  std::vector<char> buffer(std::size_t{128} * 1024);
  while (length > 0) {
    const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(length, std::ssize(buffer)));
    const ssize_t got = ::pread(source, buffer.data(), wanted, offset);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return errno;
    if (got == 0) return EIO;
    for (ssize_t written = 0; written < got;) {
      const ssize_t put =
          ::pwrite(target, buffer.data() + written, static_cast<std::size_t>(got - written), offset + written);
      if (put < 0 && errno == EINTR) continue;
      if (put < 0) return errno;
      written += put;
    }
    offset += got;
    length -= got;
  }
  return 0;
}
