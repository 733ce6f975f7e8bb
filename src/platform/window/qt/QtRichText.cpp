// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtRichText.h"

#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>
#include <algorithm>
#include <cmath>
#include <string_view>

#include "platform/window/Typography.h"
#include "platform/window/qt/QtText.h"

namespace {

constexpr double readable = 4.5;
constexpr double largestSize = 200;  // in points; what is larger is a mistake

double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

QColor readableOn(const QColor& background, const QColor& wanted) {
  const bool lighter = luminance(background) < 0.2;
  QColor colour = wanted;
  for (int i = 0; i < 20 && contrast(colour, background) < readable; ++i) {
    const float step = lighter ? 0.05F : -0.05F;
    colour =
        QColor::fromHslF(colour.hslHueF(), colour.hslSaturationF(), std::clamp(colour.lightnessF() + step, 0.0F, 1.0F));
  }
  return colour;
}

QTextCharFormat characterFormat(const RichText::Attributes& attributes, const QColor& background) {
  QTextCharFormat format;
  if (attributes.bold) format.setFontWeight(QFont::Bold);
  if (attributes.italic) format.setFontItalic(true);
  if (attributes.underline) format.setFontUnderline(true);
  // A point of a rich text is a point of the window.
  if (attributes.size >= 1) {
    format.setProperty(QTextFormat::FontPixelSize, qRound(std::min(attributes.size, largestSize)));
  }
  if (attributes.colour) {
    const auto& [red, green, blue] = *attributes.colour;
    format.setForeground(readableOn(background, QColor(red, green, blue)));
  }
  return format;
}

QTextBlockFormat paragraphFormat(const RichText::Attributes& attributes) {
  QTextBlockFormat format;
  switch (attributes.alignment) {
    case RichText::Alignment::natural:
      // Also what has only letters of another direction, such as an application's name.
      if (QGuiApplication::isRightToLeft()) format.setAlignment(Qt::AlignRight | Qt::AlignAbsolute);
      break;
    case RichText::Alignment::centre: format.setAlignment(Qt::AlignHCenter); break;
    case RichText::Alignment::right: format.setAlignment(Qt::AlignRight | Qt::AlignAbsolute); break;
    case RichText::Alignment::justified: format.setAlignment(Qt::AlignJustify); break;
  }
  format.setLeftMargin(std::clamp(attributes.indent, 0.0, largestSize));
  format.setBottomMargin(std::clamp(attributes.spaceAfter, 0.0, largestSize));
  format.setLineHeight(115, QTextBlockFormat::ProportionalHeight);
  return format;
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

void showRichText(QTextDocument& document, const RichText& text, const QColor& background) {
  document.setUndoRedoEnabled(false);
  document.clear();
  QTextCursor cursor(&document);
  cursor.beginEditBlock();
  bool startsParagraph = true;
  std::string_view rest = text.string();
  for (const RichText::Run& run : text.runs()) {
    const QTextCharFormat characters = characterFormat(run.attributes, background);
    std::string_view piece = rest.substr(0, run.length);
    rest.remove_prefix(piece.size());
    while (!piece.empty()) {
      if (startsParagraph) cursor.setBlockFormat(paragraphFormat(run.attributes));
      startsParagraph = false;
      const std::size_t end = piece.find('\n');
      cursor.insertText(toQt(withNumbersKeptToWords(piece.substr(0, end))), characters);
      if (end == std::string_view::npos) break;
      piece.remove_prefix(end + 1);
      cursor.insertBlock();
      cursor.setCharFormat(characters);
      startsParagraph = true;
    }
  }
  cursor.endEditBlock();
}
