#include "foundation/Result.h"

Error Error::posix(std::errc code, std::string_view subject) {
  std::string text = std::make_error_code(code).message();
  if (!subject.empty()) text = std::string(subject) + ": " + text;
  return {std::string(posixDomain),
          static_cast<std::int32_t>(code),
          {{std::string(localizedDescriptionKey), std::move(text)}}};
}

bool Error::is(std::errc posixCode) const {
  return domain == posixDomain && code == static_cast<std::int32_t>(posixCode);
}

std::string Error::description() const {
  const auto text = userInfo.find(localizedDescriptionKey);
  if (text != userInfo.end()) return text->second;
  return domain + " " + std::to_string(code);
}
