// SPDX-License-Identifier: Apache-2.0

#include "platform/window/InterfaceFile.h"

#include <expat.h>

#include <charconv>
#include <memory>

#include "foundation/Text.h"

namespace {

constexpr std::size_t deepest = 64;

double parseNumber(std::string_view text, double fallback) {
  text = trimmed(text);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : fallback;
}

/// Builds the elements from the parser's events. The open ones are on a stack, because a parent's children move.
class Builder {
 public:
  explicit Builder(XML_Parser parser) : parser_(parser) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* self, const XML_Char* name, const XML_Char** attributes) {
          static_cast<Builder*>(self)->start(name, attributes);
        },
        [](void* self, const XML_Char*) { static_cast<Builder*>(self)->end(); });
    XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int length) {
      auto& open = static_cast<Builder*>(self)->open_;
      open.back().text.append(text, static_cast<std::size_t>(length));
    });
    XML_SetEntityDeclHandler(parser, [](void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                        const XML_Char*, const XML_Char*, const XML_Char*) {
      XML_StopParser(static_cast<Builder*>(self)->parser_, XML_FALSE);
    });
  }

  [[nodiscard]] DescribedElement take() { return std::move(root_); }

 private:
  void start(const char* name, const char** attributes) {
    if (open_.size() >= deepest) static_cast<void>(XML_StopParser(parser_, XML_FALSE));
    DescribedElement element{.name = name, .line = XML_GetCurrentLineNumber(parser_)};
    for (; *attributes != nullptr; attributes += 2) element.attributes[attributes[0]] = attributes[1];
    open_.push_back(std::move(element));
  }
  void end() {
    DescribedElement ended = std::move(open_.back());
    open_.pop_back();
    (open_.empty() ? root_ : open_.back().children.emplace_back()) = std::move(ended);
  }

  XML_Parser parser_;
  std::vector<DescribedElement> open_;
  DescribedElement root_;
};

}  // namespace

const DescribedElement* DescribedElement::child(std::string_view childName) const {
  for (const DescribedElement& element : children) {
    if (element.name == childName) return &element;
  }
  return nullptr;
}

std::string DescribedElement::attribute(std::string_view attributeName) const {
  const auto found = attributes.find(attributeName);
  return found != attributes.end() ? found->second : "";
}

const DescribedElement* DescribedElement::property(std::string_view propertyName) const {
  for (const DescribedElement& element : children) {
    if (element.name == "property" && element.attribute("name") == propertyName && !element.children.empty()) {
      return &element.children.front();
    }
  }
  return nullptr;
}

std::string DescribedElement::textOf(std::string_view propertyName) const {
  const DescribedElement* const value = property(propertyName);
  return value != nullptr ? value->text : "";
}

double DescribedElement::numberOf(std::string_view propertyName, double fallback) const {
  return parseNumber(textOf(propertyName), fallback);
}

std::optional<Size> DescribedElement::sizeOf(std::string_view propertyName) const {
  const DescribedElement* const value = property(propertyName);
  const DescribedElement* const width = value != nullptr ? value->child("width") : nullptr;
  const DescribedElement* const height = value != nullptr ? value->child("height") : nullptr;
  if (width == nullptr || height == nullptr) return std::nullopt;
  return Size{.width = parseNumber(width->text, 0), .height = parseNumber(height->text, 0)};
}

std::vector<std::pair<std::string, std::string>> DescribedElement::connections() const {
  std::vector<std::pair<std::string, std::string>> found;
  for (const DescribedElement& element : children) {
    const bool isText = element.name == "property" && element.attribute("stdset") == "0" && !element.children.empty() &&
                        element.children.front().name == "string";
    if (isText) found.emplace_back(element.attribute("name"), element.children.front().text);
  }
  return found;
}

Result<DescribedElement> parseInterfaceFile(std::string_view bytes) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr), &XML_ParserFree);
  if (parser == nullptr) return Error::posix(std::errc::not_enough_memory, "");
  Builder builder(parser.get());
  if (XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) == XML_STATUS_OK) {
    return builder.take();
  }
  Error error = Error::posix(std::errc::invalid_argument, "");
  error.userInfo[std::string(Error::localizedDescriptionKey)] = XML_ErrorString(XML_GetErrorCode(parser.get()));
  return error;
}
