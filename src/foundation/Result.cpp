// SPDX-License-Identifier: Apache-2.0

#include "foundation/Result.h"

Error Error::posix(std::errc code, std::string_view subject) {
  return {.domain = std::string(posixDomain), .code = static_cast<std::int32_t>(code), .subject = std::string(subject)};
}

bool Error::is(std::errc posixCode) const {
  return domain == posixDomain && code == static_cast<std::int32_t>(posixCode);
}

std::string Error::reason() const {
  const auto text = userInfo.find(localizedDescriptionKey);
  if (text != userInfo.end()) return text->second;
  if (domain == posixDomain) return std::make_error_code(static_cast<std::errc>(code)).message();
  return domain + " " + std::to_string(code);
}

std::string Error::description() const { return subject.empty() ? reason() : subject + ": " + reason(); }
