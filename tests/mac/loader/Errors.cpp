// SPDX-License-Identifier: Apache-2.0

// Numbers of errors.
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "Names.h"

namespace {

struct Pair {
  int here;
  int mac;
};

// Those above 34, up to which they are the same but for one.
constexpr Pair pairs[] = {
    {EAGAIN, 35},     {EINPROGRESS, 36}, {EALREADY, 37},  {ENOTSOCK, 38},     {EDESTADDRREQ, 39}, {EMSGSIZE, 40},
    {EPROTOTYPE, 41}, {ENOPROTOOPT, 42}, {ENOTSUP, 45},   {EADDRINUSE, 48},   {ENETDOWN, 50},     {ECONNABORTED, 53},
    {ECONNRESET, 54}, {ENOBUFS, 55},     {ETIMEDOUT, 60}, {ECONNREFUSED, 61}, {ELOOP, 62},        {ENAMETOOLONG, 63},
    {ENOTEMPTY, 66},  {EDQUOT, 69},      {ESTALE, 70},    {ENOLCK, 77},       {ENOSYS, 78},       {EOVERFLOW, 84},
    {ECANCELED, 89},  {EILSEQ, 92},      {ENODATA, 93},   {EDEADLK, 11}};

int toMac(int number) {
  for (const Pair& pair : pairs) {
    if (pair.here == number) return pair.mac;
  }
  return number;
}

int fromMac(int number) {
  for (const Pair& pair : pairs) {
    if (pair.mac == number) return pair.here;
  }
  return number;
}

/// The number as the program sees it, and may change it. This system's own is emptied each time, so that the next look
/// can tell whether a call has failed since.
int* errorPlace() {
  thread_local int seen = 0;
  if (errno != 0) seen = toMac(std::exchange(errno, 0));
  return &seen;
}

int errorText(int number, char* text, std::size_t size) {
  const char* const found = ::strerrordesc_np(fromMac(number));
  ::strncpy(text, found != nullptr ? found : "Unknown error", size);
  text[size - 1] = '\0';
  return 0;
}

char* sharedErrorText(int number) {
  static std::array<char, 128> text{};
  errorText(number, text.data(), text.size());
  return text.data();
}

}  // namespace

std::vector<Name> namesOfErrors() {
  return {function("___error", &errorPlace), function("_strerror_r", &errorText),
          function("_strerror", &sharedErrorText)};
}
