// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "foundation/RichText.h"
#include "platform/Platform.h"

// Pages that lie in the installer's bundle, in the user's language where there is one. They are read anew each time.

/// The bytes of the resource NAME.TYPE. Throws Exception when there is none or it cannot be read.
[[nodiscard]] std::string contentsOfResource(const Platform& platform, std::string_view name, std::string_view type);

/// The rich text of the resource NAME.rtf as it is written there. Throws Exception when there is none, or when it
/// cannot be read as such.
[[nodiscard]] RichText richTextFormat(const Platform& platform, std::string_view name);

/// The same with the names of the product and the company in place of their placeholders.
[[nodiscard]] RichText richTextResource(const Platform& platform, std::string_view name);

/// Puts the names of the product and the company in place of their placeholders.
void fillInNames(const Platform& platform, RichText& text);

/// richTextResource() for a page that may be missing, which gives an empty text; so does a damaged one, and a line in
/// the log.
[[nodiscard]] RichText optionalRichTextResource(const Platform& platform, std::string_view name);
