#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What the installer and its helper say to each other, one short message at a time.

/// A tool to be started, as the installer names it: nothing about it is believed yet.
struct Request {
  std::string tool;
  std::vector<std::string> arguments;
};

/// What the helper says. An answer follows every request, and the end of the tool every answer that was yes; with the
/// end comes the number of the tool, counted from 1.
namespace HelperSays {
inline constexpr std::string_view ready = "ready";
inline constexpr std::string_view started = "started";
inline constexpr std::string_view refused = "refused";
inline constexpr std::string_view ended = "ended ";
}  // namespace HelperSays

/// The most that the parts of one request hold together; about what a tool can be given as arguments.
inline constexpr std::size_t mostRequestBytes = std::size_t{2} * 1024 * 1024;
inline constexpr std::size_t mostArguments = 100'000;

/// The messages that make up a request; the tool's output goes with the last one. None when the request is larger than
/// any may be, or when one of its texts holds a NUL.
[[nodiscard]] std::vector<std::string> messagesFor(const Request& request);

/// Puts requests together from messages that anybody may have written.
class RequestReader {
 public:
  enum class State {
    unfinished,
    complete,  ///< request() is the whole of it; the next message starts another
    broken,    ///< no request, and nothing to be expected from who sent it
  };

  /// Takes the next message.
  State add(std::string_view message);

  [[nodiscard]] const Request& request() const { return request_; }

 private:
  [[nodiscard]] bool split();

  std::string content_;
  Request request_;
};
