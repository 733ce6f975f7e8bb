// SPDX-License-Identifier: Apache-2.0

#include "kit/PictureFile.h"

#include <array>
#include <optional>

namespace {

using namespace std::string_view_literals;

constexpr std::string_view endsEarly = "it ends too early";

/// A whole number of one to four bytes; 0 beyond the end.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset, std::size_t length, bool isBigEndian = true) {
  if (offset > bytes.size() || bytes.size() - offset < length) return 0;
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const std::size_t position = isBigEndian ? i : length - 1 - i;
    number = (number << 8U) | static_cast<unsigned char>(bytes[offset + position]);
  }
  return number;
}

using CheckSums = std::array<std::uint32_t, 256>;

constexpr CheckSums makeCheckSums() {
  constexpr std::uint32_t polynomial = 0xEDB88320;
  CheckSums sums{};
  for (std::uint32_t byte = 0; byte < sums.size(); ++byte) {
    std::uint32_t sum = byte;
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? polynomial : 0);
    sums[byte] = sum;
  }
  return sums;
}

/// The check sum of a chunk of a PNG file.
std::uint32_t checkSum(std::string_view bytes) {
  constexpr CheckSums sums = makeCheckSums();
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char byte : bytes) sum = (sum >> 8U) ^ sums[(sum ^ static_cast<unsigned char>(byte)) & 0xFFU];
  return ~sum;
}

PictureFile inspectPng(std::string_view bytes) {
  constexpr std::size_t signatureSize = 8;
  constexpr std::size_t overhead = 12;  // of a chunk: length, type, check sum
  PictureFile file{.format = "png"};
  bool hasPixels = false;
  for (std::size_t at = signatureSize;;) {
    const std::size_t length = numberAt(bytes, at, 4);
    if (at + overhead > bytes.size() || bytes.size() - at - overhead < length) {
      file.damage = endsEarly;
      return file;
    }
    const std::string_view type = bytes.substr(at + 4, 4);
    if (checkSum(bytes.substr(at + 4, length + 4)) != numberAt(bytes, at + 8 + length, 4)) {
      file.damage = "a check sum in it is wrong";
      return file;
    }
    if (type == "IHDR") {
      file.width = numberAt(bytes, at + 8, 4);
      file.height = numberAt(bytes, at + 12, 4);
    }
    hasPixels = hasPixels || type == "IDAT";
    if (type == "IEND") break;
    at += length + overhead;
  }
  if (!hasPixels || file.width == 0 || file.height == 0) file.damage = "it holds no picture";
  return file;
}

PictureFile inspectIcons(std::string_view bytes) {
  struct Kind {
    std::string_view type;
    std::uint32_t size;
  };
  constexpr std::array<Kind, 15> kinds = {{{"is32", 16},
                                           {"il32", 32},
                                           {"ih32", 48},
                                           {"it32", 128},
                                           {"icp4", 16},
                                           {"icp5", 32},
                                           {"icp6", 64},
                                           {"ic07", 128},
                                           {"ic08", 256},
                                           {"ic09", 512},
                                           {"ic10", 1024},
                                           {"ic11", 32},
                                           {"ic12", 64},
                                           {"ic13", 256},
                                           {"ic14", 512}}};
  PictureFile file{.format = "icns"};
  constexpr std::size_t header = 8;
  std::size_t at = header;
  while (at + header <= bytes.size()) {
    const std::size_t length = numberAt(bytes, at + 4, 4);
    if (length < header || bytes.size() - at < length) break;
    const std::string_view content = bytes.substr(at + header, length - header);
    if (content.starts_with("\x89PNG") && !inspectPng(content).damage.empty()) {
      file.damage = "a picture in it is damaged";
    }
    for (const auto& [type, size] : kinds) {
      if (bytes.substr(at, 4) == type && size > file.width) file.width = file.height = size;
    }
    at += length;
  }
  if (at != bytes.size()) file.damage = endsEarly;
  if (file.damage.empty() && file.width == 0) file.damage = "it holds no picture";
  return file;
}

PictureFile inspectTiff(std::string_view bytes) {
  const bool isBig = bytes.starts_with("MM");
  constexpr std::size_t entrySize = 12;
  PictureFile file{.format = "tiff"};
  const std::size_t directory = numberAt(bytes, 4, 4, isBig);
  const std::size_t count = numberAt(bytes, directory, 2, isBig);
  std::size_t strip = 0;
  std::size_t stripLength = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = directory + 2 + i * entrySize;
    const std::size_t valueSize = numberAt(bytes, entry + 2, 2, isBig) == 3 ? 2 : 4;
    const std::uint32_t value = numberAt(bytes, entry + 8, valueSize, isBig);
    const bool isSingle = numberAt(bytes, entry + 4, 4, isBig) == 1;
    switch (numberAt(bytes, entry, 2, isBig)) {
      case 256: file.width = value; break;
      case 257: file.height = value; break;
      case 273: strip = isSingle ? value : 0; break;
      case 279: stripLength = isSingle ? value : 0; break;
      default: break;
    }
  }
  if (file.width == 0 || file.height == 0) {
    file.damage = directory + 2 + count * entrySize > bytes.size() ? endsEarly : "it holds no picture";
  } else if (strip + stripLength > bytes.size()) {
    file.damage = endsEarly;
  }
  return file;
}

PictureFile inspectJpeg(std::string_view bytes) {
  PictureFile file{.format = "jpeg"};
  for (std::size_t at = 2; at + 9 < bytes.size() && bytes[at] == '\xFF';) {
    const auto marker = static_cast<unsigned char>(bytes[at + 1]);
    const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (isFrame) {
      file.height = numberAt(bytes, at + 5, 2);
      file.width = numberAt(bytes, at + 7, 2);
      break;
    }
    at += 2 + numberAt(bytes, at + 2, 2);
  }
  if (file.width == 0 || file.height == 0) {
    file.damage = "it holds no picture";
  } else if (bytes.find("\xFF\xD9"sv) == std::string_view::npos) {
    file.damage = endsEarly;
  }
  return file;
}

}  // namespace

PictureFile inspectPicture(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG")) return inspectPng(bytes);
  if (bytes.starts_with("icns")) return inspectIcons(bytes);
  if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) return inspectTiff(bytes);
  if (bytes.starts_with("\xFF\xD8\xFF")) return inspectJpeg(bytes);
  return {};
}
