// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QColor>
#include <QTextDocument>

#include "foundation/RichText.h"

/// Fills the document with the text. Colours that could not be read on the background are made lighter or darker until
/// they can.
void showRichText(QTextDocument& document, const RichText& text, const QColor& background);

/// How well one colour can be read on another, from 1 to 21; body text wants 4.5.
[[nodiscard]] double contrast(const QColor& one, const QColor& other);
