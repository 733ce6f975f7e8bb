// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

/// An error: a domain, a code of that domain, and texts.
struct Error {
  /// Domain of errors of the file system, whose code is a std::errc.
  static constexpr std::string_view posixDomain = "NSPOSIXErrorDomain";
  /// Key of the text for the user.
  static constexpr std::string_view localizedDescriptionKey = "NSLocalizedDescription";

  std::string domain;
  std::int32_t code = 0;
  std::map<std::string, std::string, std::less<>> userInfo = {};
  std::string subject = {};  ///< what the error is about, mostly a path; may be empty

  /// An error of the file system about `subject`.
  static Error posix(std::errc code, std::string_view subject);

  [[nodiscard]] bool is(std::errc posixCode) const;

  /// Returns the reason without the subject: the localized description, the system's message, or domain and code.
  [[nodiscard]] std::string reason() const;

  /// Returns one line for the log: the subject, unless it is empty, and the reason.
  [[nodiscard]] std::string description() const;
};

/// A value or an error.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  [[nodiscard]] explicit operator bool() const { return content_.index() == 0; }
  [[nodiscard]] T& operator*() { return std::get<0>(content_); }
  [[nodiscard]] const T& operator*() const { return std::get<0>(content_); }
  [[nodiscard]] T* operator->() { return &std::get<0>(content_); }
  [[nodiscard]] const T* operator->() const { return &std::get<0>(content_); }
  [[nodiscard]] const Error& error() const { return std::get<1>(content_); }
  [[nodiscard]] T valueOr(T fallback) && { return *this ? std::move(std::get<0>(content_)) : std::move(fallback); }

 private:
  std::variant<T, Error> content_;
};

/// Success or an error. Success allocates nothing.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::make_shared<const Error>(std::move(error))) {}

  [[nodiscard]] explicit operator bool() const { return error_ == nullptr; }
  [[nodiscard]] const Error& error() const { return *error_; }

 private:
  std::shared_ptr<const Error> error_;
};

/// Marks a deliberately ignored failure. A comment at the call gives the reason.
inline void ignore(const Status& /*status*/) {}
