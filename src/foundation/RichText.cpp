// SPDX-License-Identifier: Apache-2.0

#include "foundation/RichText.h"

#include <algorithm>
#include <utility>

void RichText::append(std::string_view text, const Attributes& attributes) {
  if (text.empty()) return;
  text_.append(text);
  if (!runs_.empty() && runs_.back().attributes == attributes) {
    runs_.back().length += text.size();
  } else {
    runs_.push_back({text.size(), attributes});
  }
}

bool RichText::replaceOccurrences(std::string_view what, std::string_view with) {
  std::size_t found = what.empty() ? std::string::npos : text_.find(what);
  if (found == std::string::npos) return false;
  RichText result;
  std::size_t next = 0;  // everything before it has been copied or replaced
  std::size_t end = 0;
  for (const Run& run : runs_) {
    end += run.length;
    while (next < end) {
      const std::size_t kept = std::min(end, found);
      result.append(std::string_view(text_).substr(next, kept - next), run.attributes);
      next = kept;
      if (found < end) {
        result.append(with, run.attributes);
        next = found + what.size();
        found = text_.find(what, next);
      }
    }
  }
  *this = std::move(result);
  return true;
}
