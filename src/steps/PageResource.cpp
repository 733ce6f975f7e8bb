// SPDX-License-Identifier: Apache-2.0

#include "steps/PageResource.h"

#include <cstddef>
#include <utility>

#include "foundation/Exception.h"
#include "foundation/Format.h"

namespace {

constexpr std::size_t largestFile = std::size_t{16} << 20U;

}  // namespace

std::string contentsOfResource(const Platform& platform, std::string_view name, std::string_view type) {
  const auto path = platform.bundles.mainBundle().pathForResource(name, type);
  if (!path) throw Exception(formatted("there is no %@.%@ in the installer", name, type));
  auto bytes = platform.files.readFile(*path, largestFile + 1);
  if (!bytes) throw Exception(bytes.error().description());
  if (bytes->size() > largestFile) throw Exception(*path + " is too large");
  return std::move(*bytes);
}

RichText richTextFormat(const Platform& platform, std::string_view name) {
  const std::string bytes = contentsOfResource(platform, name, "rtf");
  try {
    return parseRichTextFormat(bytes);
  } catch (const Exception& exception) {
    throw Exception(formatted("%@.rtf: %@", name, std::string_view(exception.what())));
  }
}

RichText richTextResource(const Platform& platform, std::string_view name) {
  RichText text = richTextFormat(platform, name);
  fillInNames(platform, text);
  return text;
}

void fillInNames(const Platform& platform, RichText& text) {
  for (const auto& [placeholder, name] : platform.bundles.mainBundle().names()) {
    text.replaceOccurrences(placeholder, name);
  }
}

RichText optionalRichTextResource(const Platform& platform, std::string_view name) {
  if (!platform.bundles.mainBundle().pathForResource(name, "rtf")) return {};
  try {
    return richTextResource(platform, name);
  } catch (const Exception& exception) {
    platform.log.write(exception.what());
    return {};
  }
}
