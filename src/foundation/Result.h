#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

/// What went wrong: a domain, a code of that domain, and texts that belong to it.
struct Error {
  /// Domain of what the file system reports; the code is then a std::errc.
  static constexpr std::string_view posixDomain = "NSPOSIXErrorDomain";
  /// Key of the text that tells a person what happened.
  static constexpr std::string_view localizedDescriptionKey = "NSLocalizedDescription";

  std::string domain;
  std::int32_t code = 0;
  std::map<std::string, std::string, std::less<>> userInfo = {};
  std::string subject = {};  ///< what the error is about, mostly a path; may be empty

  /// An error of the file system about `subject`.
  static Error posix(std::errc code, std::string_view subject);

  [[nodiscard]] bool is(std::errc posixCode) const;

  /// Why, without the subject: the localized description, the system's words, or domain and code.
  [[nodiscard]] std::string reason() const;

  /// One line for the log: the subject, if there is one, and the reason.
  [[nodiscard]] std::string description() const;
};

/// A value, or the error that took its place.
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

/// Success, or the error. Success costs nothing.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::make_shared<const Error>(std::move(error))) {}

  [[nodiscard]] explicit operator bool() const { return error_ == nullptr; }
  [[nodiscard]] const Error& error() const { return *error_; }

 private:
  std::shared_ptr<const Error> error_;
};

/// Says at the call that a failure is ignored on purpose; the reason stands in a comment beside it.
inline void ignore(const Status& /*status*/) {}
