// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include "foundation/RichText.h"

/// The text with the fonts, colours and paragraphs of this system, autoreleased. What has no size of its own has the
/// given one.
[[nodiscard]] NSAttributedString* attributedText(const RichText& text, double usualSize);
