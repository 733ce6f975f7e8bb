// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// A piece of the rich text format.
struct RichTextToken {
  enum class Kind {
    openGroup,
    closeGroup,
    byte,    ///< a character, in the code page of the text
    word,    ///< a control word
    symbol,  ///< a control symbol other than those that stand for a byte
    end,     ///< of the bytes
  };
  Kind kind = Kind::end;
  std::uint8_t byte = 0;  ///< the character of a byte or symbol
  std::string_view word = {};
  std::optional<std::int64_t> number = std::nullopt;  ///< that belongs to the word
};

/// Takes rich text format apart. Any bytes will do.
class RichTextTokens {
 public:
  explicit RichTextTokens(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] RichTextToken next();

  /// Leaves out so many bytes, or those that there are.
  void skip(std::size_t bytes);

 private:
  [[nodiscard]] RichTextToken readControl();
  [[nodiscard]] std::uint8_t readHexadecimalByte();
  [[nodiscard]] RichTextToken readWord();
  [[nodiscard]] std::optional<std::int64_t> readNumber();

  std::string_view bytes_;
  std::size_t next_ = 0;
};
