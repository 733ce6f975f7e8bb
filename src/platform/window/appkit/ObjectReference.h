// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <utility>

/// Holds one reference to an object, or to none, and releases it.
template <class T>
class ObjectReference {
 public:
  ObjectReference() = default;
  /// Takes over a reference that the caller owns.
  explicit ObjectReference(T* owned) : object_(owned) {}
  ObjectReference(ObjectReference&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
  ObjectReference& operator=(ObjectReference&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ObjectReference() { [object_ release]; }

  [[nodiscard]] T* get() const { return object_; }

 private:
  T* object_ = nil;
};

/// Nil when the text is not UTF-8.
[[nodiscard]] inline NSString* toObject(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

/// Empty for nil.
[[nodiscard]] inline std::string toText(NSString* text) {
  const char* const bytes = [text UTF8String];
  return bytes != nullptr ? bytes : "";
}
