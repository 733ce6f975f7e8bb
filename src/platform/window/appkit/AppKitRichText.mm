// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitRichText.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/window/Typography.h"
#include "platform/window/appkit/ObjectReference.h"

namespace {

constexpr double largestSize = 200;  // in points; what is larger is a mistake
constexpr double lineHeight = 1.15;

NSFont* fontFor(const RichText::Attributes& attributes, double usualSize) {
  const double size = attributes.size >= 1 ? std::min(attributes.size, largestSize) : usualSize;
  NSFont* const font = attributes.bold ? [NSFont boldSystemFontOfSize:size] : [NSFont systemFontOfSize:size];
  if (!attributes.italic) return font;
  return [[NSFontManager sharedFontManager] convertFont:font toHaveTrait:NSItalicFontMask];
}

NSTextAlignment alignmentOf(RichText::Alignment alignment) {
  switch (alignment) {
    case RichText::Alignment::natural: break;
    case RichText::Alignment::centre: return NSCenterTextAlignment;
    case RichText::Alignment::right: return NSRightTextAlignment;
    case RichText::Alignment::justified: return NSJustifiedTextAlignment;
  }
  return NSNaturalTextAlignment;
}

NSParagraphStyle* paragraphFor(const RichText::Attributes& attributes) {
  NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [style setAlignment:alignmentOf(attributes.alignment)];
  const double indent = std::clamp(attributes.indent, 0.0, largestSize);
  [style setFirstLineHeadIndent:indent];
  [style setHeadIndent:indent];
  [style setParagraphSpacing:std::clamp(attributes.spaceAfter, 0.0, largestSize)];
  [style setLineHeightMultiple:lineHeight];
  return style;
}

NSColor* colourFor(const RichText::Attributes& attributes) {
  if (!attributes.colour) return [NSColor textColor];
  const auto& [red, green, blue] = *attributes.colour;
  return [NSColor colorWithCalibratedRed:red / 255.0 green:green / 255.0 blue:blue / 255.0 alpha:1];
}

}  // namespace

NSAttributedString* attributedText(const RichText& text, double usualSize) {
  NSMutableAttributedString* const made = [[[NSMutableAttributedString alloc] init] autorelease];
  std::string_view rest = text.string();
  for (const RichText::Run& run : text.runs()) {
    NSString* const piece = toObject(withNumbersKeptToWords(rest.substr(0, run.length)));
    rest.remove_prefix(std::min(run.length, rest.size()));
    if (piece == nil) continue;
    NSMutableDictionary* const attributes = [NSMutableDictionary dictionary];
    [attributes setObject:fontFor(run.attributes, usualSize) forKey:NSFontAttributeName];
    [attributes setObject:colourFor(run.attributes) forKey:NSForegroundColorAttributeName];
    [attributes setObject:paragraphFor(run.attributes) forKey:NSParagraphStyleAttributeName];
    if (run.attributes.underline) {
      [attributes setObject:[NSNumber numberWithInt:NSUnderlineStyleSingle] forKey:NSUnderlineStyleAttributeName];
    }
    ObjectReference<NSAttributedString> shown([[NSAttributedString alloc] initWithString:piece attributes:attributes]);
    [made appendAttributedString:shown.get()];
  }
  return made;
}
