// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacLanguages.h"

#include <algorithm>
#include <array>

#include "platform/macos/Reference.h"

std::vector<std::string> preferredLanguagesOfSystem() {
  std::vector<std::string> languages;
  const auto add = [&](std::string code) {
    for (;;) {
      if (!code.empty() && std::ranges::find(languages, code) == languages.end()) languages.push_back(code);
      const std::size_t dash = code.rfind('-');
      if (dash == std::string::npos) return;
      code.resize(dash);
    }
  };
  const Reference<CFArrayRef> preferred(::CFLocaleCopyPreferredLanguages());
  const CFIndex count = preferred ? ::CFArrayGetCount(preferred.get()) : 0;
  for (CFIndex i = 0; i < count; ++i) {
    std::array<char, 64> code{};  // no code is nearly so long
    const auto text = static_cast<CFStringRef>(::CFArrayGetValueAtIndex(preferred.get(), i));
    if (::CFStringGetCString(text, code.data(), code.size(), kCFStringEncodingUTF8) != 0) add(code.data());
  }
  add("en");
  return languages;
}
