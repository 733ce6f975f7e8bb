// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <string_view>
#include <utility>

/// Holds one reference to a CoreFoundation object, or to none, and releases it.
template <class T>
class Reference {
 public:
  Reference() = default;
  /// Takes over a reference that the caller owns.
  explicit Reference(T owned) : object_(owned) {}
  Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Reference& operator=(Reference&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Reference() {
    if (object_ != nullptr) ::CFRelease(object_);
  }

  [[nodiscard]] T get() const { return object_; }
  [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

 private:
  T object_ = nullptr;
};

[[nodiscard]] inline const UInt8* bytesOf(std::string_view text) { return reinterpret_cast<const UInt8*>(text.data()); }

/// Empty when the text is not UTF-8.
[[nodiscard]] inline Reference<CFStringRef> coreString(std::string_view text) {
  return Reference<CFStringRef>(::CFStringCreateWithBytes(nullptr, bytesOf(text), static_cast<CFIndex>(text.size()),
                                                          kCFStringEncodingUTF8, /*hasByteOrderMark=*/false));
}
