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

bool RichText::replaceFirst(std::string_view what, std::string_view with) {
  const std::size_t found = what.empty() ? std::string::npos : text_.find(what);
  if (found == std::string::npos) return false;
  RichText result;
  std::size_t start = 0;
  for (const Run& run : runs_) {
    const std::size_t end = start + run.length;
    const std::string_view text = text_;
    if (start < found) result.append(text.substr(start, std::min(end, found) - start), run.attributes);
    if (start <= found && found < end) result.append(with, run.attributes);
    const std::size_t after = std::max(start, found + what.size());
    if (after < end) result.append(text.substr(after, end - after), run.attributes);
    start = end;
  }
  *this = std::move(result);
  return true;
}
