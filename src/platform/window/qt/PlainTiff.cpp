// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/PlainTiff.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t largestSide = 1024;

/// Fields of the format.
struct Tag {
  static constexpr std::uint32_t width = 256;
  static constexpr std::uint32_t height = 257;
  static constexpr std::uint32_t bitsPerSample = 258;
  static constexpr std::uint32_t compression = 259;
  static constexpr std::uint32_t photometric = 262;
  static constexpr std::uint32_t stripOffsets = 273;
  static constexpr std::uint32_t orientation = 274;
  static constexpr std::uint32_t samplesPerPixel = 277;
  static constexpr std::uint32_t stripByteCounts = 279;
  static constexpr std::uint32_t planarConfiguration = 284;
  static constexpr std::uint32_t predictor = 317;
  static constexpr std::uint32_t extraSamples = 338;
};

/// Reads numbers, and notes when one lies outside the file.
class Numbers {
 public:
  explicit Numbers(std::string_view bytes) : bytes_(bytes), isBigEndian_(bytes.starts_with("MM")) {}

  [[nodiscard]] std::uint32_t number(std::size_t offset, std::size_t size) {
    if (offset > bytes_.size() || bytes_.size() - offset < size) {
      isDamaged_ = true;
      return 0;
    }
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      const auto byte = static_cast<unsigned char>(bytes_[offset + (isBigEndian_ ? i : size - 1 - i)]);
      value = value << 8U | byte;
    }
    return value;
  }
  [[nodiscard]] bool isDamaged() const { return isDamaged_; }

 private:
  std::string_view bytes_;
  bool isBigEndian_;
  bool isDamaged_ = false;
};

using Fields = std::map<std::uint32_t, std::vector<std::uint32_t>>;

/// The fields of one or more 16- or 32-bit numbers.
Fields readFields(Numbers& numbers) {
  Fields fields;
  const std::size_t directory = numbers.number(4, 4);
  const std::uint32_t count = numbers.number(directory, 2);
  for (std::uint32_t i = 0; i < count && !numbers.isDamaged(); ++i) {
    const std::size_t entry = directory + 2 + std::size_t{12} * i;
    const std::uint32_t type = numbers.number(entry + 2, 2);
    const std::uint32_t length = numbers.number(entry + 4, 4);
    if ((type != 3 && type != 4) || length == 0 || length > largestSide) continue;
    const std::size_t size = type == 3 ? 2 : 4;
    const std::size_t place = length * size <= 4 ? entry + 8 : numbers.number(entry + 8, 4);
    auto& values = fields[numbers.number(entry, 2)];
    for (std::uint32_t value = 0; value < length; ++value) values.push_back(numbers.number(place + value * size, size));
  }
  return fields;
}

}  // namespace

QImage readPlainTiff(std::string_view bytes) {
  if (!bytes.starts_with("II*") && !bytes.starts_with("MM")) return {};
  Numbers numbers(bytes);
  const Fields fields = readFields(numbers);
  const auto only = [&](std::uint32_t tag, std::uint32_t otherwise) {
    const auto found = fields.find(tag);
    return found == fields.end() ? otherwise : found->second.front();
  };
  const std::uint32_t columns = only(Tag::width, 0);
  const std::uint32_t rows = only(Tag::height, 0);
  const auto bits = fields.find(Tag::bitsPerSample);
  const auto offsets = fields.find(Tag::stripOffsets);
  const auto lengths = fields.find(Tag::stripByteCounts);
  const bool isPlain = only(Tag::compression, 1) == 1 && only(Tag::photometric, 0) == 2 &&
                       only(Tag::samplesPerPixel, 1) == 4 && only(Tag::planarConfiguration, 1) == 1 &&
                       only(Tag::predictor, 1) == 1 && only(Tag::orientation, 1) == 1 && bits != fields.end() &&
                       bits->second == std::vector<std::uint32_t>(4, 8);
  const bool isWhole = offsets != fields.end() && lengths != fields.end() &&
                       offsets->second.size() == lengths->second.size() && columns > 0 && rows > 0 &&
                       columns <= largestSide && rows <= largestSide;
  if (numbers.isDamaged() || !isPlain || !isWhole) return {};

  std::string pixels;
  for (std::size_t i = 0; i < offsets->second.size(); ++i) {
    if (offsets->second[i] > bytes.size() || lengths->second[i] > bytes.size() - offsets->second[i]) return {};
    pixels += bytes.substr(offsets->second[i], lengths->second[i]);
  }
  if (pixels.size() != std::size_t{4} * columns * rows) return {};
  const auto format = only(Tag::extraSamples, 0) == 1 ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888;
  return QImage(reinterpret_cast<const uchar*>(pixels.data()), static_cast<int>(columns), static_cast<int>(rows),
                static_cast<qsizetype>(columns) * 4, format)
      .copy();
}
