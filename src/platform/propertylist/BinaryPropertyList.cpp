// SPDX-License-Identifier: Apache-2.0

#include <bit>
#include <cstdint>
#include <limits>
#include <utility>

#include "foundation/Text.h"
#include "platform/propertylist/PropertyListReader.h"

// The file is a header, the objects, a table of their offsets, and a trailer of 32 bytes that says where the table is.
// An object starts with a marker: its kind in the upper four bits and its length, or the need to read one, in the lower
// four.

namespace {

constexpr std::size_t trailerSize = 32;
constexpr std::string_view header = "bplist0";

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  Result<Value> read() {
    if (bytes_.size() < header.size() + 1 + trailerSize) return fail("too short");
    const std::size_t trailer = bytes_.size() - trailerSize;
    offsetSize_ = byteAt(trailer + 6);
    referenceSize_ = byteAt(trailer + 7);
    objectCount_ = bigEndian(trailer + 8, 8);
    const std::uint64_t top = bigEndian(trailer + 16, 8);
    tableOffset_ = bigEndian(trailer + 24, 8);
    const auto isSize = [](std::uint64_t size) { return size >= 1 && size <= 8; };
    if (!isSize(offsetSize_) || !isSize(referenceSize_) || tableOffset_ > trailer ||
        objectCount_ > (trailer - tableOffset_) / offsetSize_) {
      return fail("its trailer is wrong");
    }
    // Objects may be shared, so a small file can expand to a huge value. Valid files have fewer values than bytes.
    budget_ = bytes_.size();
    return readObject(top, 0);
  }

 private:
  static Error fail(std::string_view what) { return propertyListError(what); }

  [[nodiscard]] std::uint64_t byteAt(std::uint64_t offset) const { return static_cast<unsigned char>(bytes_[offset]); }

  /// The caller has made sure that the bytes are there.
  [[nodiscard]] std::uint64_t bigEndian(std::uint64_t offset, std::uint64_t size) const {
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < size; ++i) value = (value << 8U) | byteAt(offset + i);
    return value;
  }

  [[nodiscard]] bool has(std::uint64_t offset, std::uint64_t size) const {
    return offset <= tableOffset_ && size <= tableOffset_ - offset;
  }

  struct Object {
    std::uint64_t kind;
    std::uint64_t length;  ///< elements, characters or bytes
    std::uint64_t start;   ///< of the content
  };

  Result<Object> objectAt(std::uint64_t offset) const {
    if (!has(offset, 1)) return fail("an object lies outside");
    const std::uint64_t marker = byteAt(offset);
    Object object{marker >> 4U, marker & 0xFU, offset + 1};
    const bool hasLength = object.kind == 0x4 || object.kind == 0x5 || object.kind == 0x6 || object.kind >= 0xA;
    if (!hasLength || object.length != 0xF) return object;
    if (!has(object.start, 1) || byteAt(object.start) >> 4U != 0x1) return fail("a length is missing");
    const std::uint64_t power = byteAt(object.start) & 0xFU;
    if (power > 3 || !has(object.start + 1, 1ULL << power)) return fail("a length is wrong");
    object.length = bigEndian(object.start + 1, 1ULL << power);
    object.start += 1 + (1ULL << power);
    return object;
  }

  Result<Value> readObject(std::uint64_t index, int depth) {
    if (depth > deepestPropertyList) return fail("nested too deeply");
    if (index >= objectCount_) return fail("an object is missing");
    if (budget_-- == 0) return fail("it repeats itself too often");
    const auto object = objectAt(bigEndian(tableOffset_ + index * offsetSize_, offsetSize_));
    if (!object) return object.error();
    switch (object->kind) {
      case 0x0: return readSimple(*object);
      case 0x1: return readInteger(*object);
      case 0x2: return readReal(*object);
      case 0x3: return readDate(*object);
      case 0x4:
        if (!has(object->start, object->length)) return fail("data ends too early");
        return Value(Value::Data{std::string(bytes_.substr(object->start, object->length))});
      case 0x5:
        if (!has(object->start, object->length)) return fail("a text ends too early");
        return readAscii(*object);
      case 0x6: return readUtf16(*object);
      case 0x8: return readUid(*object);
      case 0xA:
      case 0xC: return readArray(*object, depth);
      case 0xD: return readDictionary(*object, depth);
      default: return fail("an object of an unknown kind");
    }
  }

  static Result<Value> readSimple(const Object& object) {
    if (object.length == 0x8) return Value(false);
    if (object.length == 0x9) return Value(true);
    if (object.length == 0x0) return Value();
    return fail("an object of an unknown kind");
  }

  Result<Value> readInteger(const Object& object) const {
    const std::uint64_t size = object.length <= 4 ? 1ULL << object.length : 0;
    if (size == 0 || !has(object.start, size)) return fail("a number is wrong");
    // Sixteen bytes hold an unsigned number of 64 bits in the lower half.
    const std::uint64_t value = size == 16 ? bigEndian(object.start + 8, 8) : bigEndian(object.start, size);
    if (size == 16 && value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return Value(value);
    return Value(static_cast<std::int64_t>(value));
  }

  Result<Value> readReal(const Object& object) const {
    if (object.length == 2 && has(object.start, 4)) {
      return Value(double{std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(object.start, 4)))});
    }
    if (object.length == 3 && has(object.start, 8)) return Value(std::bit_cast<double>(bigEndian(object.start, 8)));
    return fail("a number is wrong");
  }

  Result<Value> readDate(const Object& object) const {
    if (object.length != 3 || !has(object.start, 8)) return fail("a date is wrong");
    return Value(Value::Date{std::bit_cast<double>(bigEndian(object.start, 8))});
  }

  Result<Value> readUid(const Object& object) const {
    const std::uint64_t size = object.length + 1;
    if (size > 8 || !has(object.start, size)) return fail("an identifier is wrong");
    return Value(Value::Dictionary{{"CF$UID", Value(static_cast<std::int64_t>(bigEndian(object.start, size)))}});
  }

  Result<Value> readAscii(const Object& object) const {
    const std::string_view bytes = bytes_.substr(object.start, object.length);
    if (auto text = decodeUtf8(bytes)) return Value(std::move(*text));
    std::string text;  // not ASCII after all; no byte of it is lost as Latin-1
    for (const char c : bytes) appendUtf8(text, static_cast<unsigned char>(c));
    return Value(std::move(text));
  }

  Result<Value> readUtf16(const Object& object) const {
    if (object.length > tableOffset_ / 2 || !has(object.start, object.length * 2)) return fail("a text ends too early");
    return Value(decodeTextFile(std::string("\xFE\xFF").append(bytes_.substr(object.start, object.length * 2))).text);
  }

  [[nodiscard]] bool hasReferences(const Object& object, std::uint64_t count) const {
    return count <= tableOffset_ / referenceSize_ && has(object.start, count * referenceSize_);
  }

  [[nodiscard]] std::uint64_t reference(const Object& object, std::uint64_t i) const {
    return bigEndian(object.start + i * referenceSize_, referenceSize_);
  }

  Result<Value> readArray(const Object& object, int depth) {
    if (!hasReferences(object, object.length)) return fail("a list ends too early");
    Value::Array array;
    for (std::uint64_t i = 0; i < object.length; ++i) {
      auto element = readObject(reference(object, i), depth + 1);
      if (!element) return element.error();
      array.push_back(std::move(*element));
    }
    return Value(std::move(array));
  }

  Result<Value> readDictionary(const Object& object, int depth) {
    if (object.length > tableOffset_ || !hasReferences(object, object.length * 2)) {
      return fail("a dictionary ends too early");
    }
    Value::Dictionary dictionary;
    for (std::uint64_t i = 0; i < object.length; ++i) {
      const auto key = readObject(reference(object, i), depth + 1);
      if (!key) return key.error();
      if (key->as<std::string>() == nullptr) return fail("a key is no text");
      auto value = readObject(reference(object, object.length + i), depth + 1);
      if (!value) return value.error();
      dictionary.insert_or_assign(key->text(), std::move(*value));
    }
    return Value(std::move(dictionary));
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t tableOffset_ = 0;
  std::uint64_t budget_ = 0;
};

}  // namespace

Result<Value> readBinaryPropertyList(std::string_view bytes) { return Reader(bytes).read(); }
