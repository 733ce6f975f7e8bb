// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/ApplicationProcesses.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <memory>
#include <tuple>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/posix/FileDescriptor.h"

namespace {

/// The start of the file, at most `limit` bytes; nothing when it cannot be read. Never waits.
std::optional<std::string> readStart(const std::string& path, std::size_t limit) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file) return std::nullopt;
  std::string bytes(limit, '\0');
  std::size_t size = 0;
  while (size < limit) {
    const ssize_t length = ::read(file.get(), bytes.data() + size, limit - size);
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return std::nullopt;
    if (length == 0) break;
    size += static_cast<std::size_t>(length);
  }
  bytes.resize(size);
  return bytes;
}

std::string inProc(pid_t id, std::string_view name) { return joinPath({"/proc", std::to_string(id), name}); }

template <class Number>
std::optional<Number> parseNumber(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// The program's file; nothing for other users' processes and those that have ended.
std::optional<std::string> programOfProcess(pid_t id) {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = ::readlink(inProc(id, "exe").c_str(), path.data(), path.size());
  if (length < 0) return std::nullopt;
  return std::string(path.data(), static_cast<std::size_t>(length));
}

/// Whether a process of the interpreter may be running this file as its script, and not just working on it. A script
/// that cannot be looked at is taken for one that runs.
bool mayBeScriptOf(const std::string& interpreter, const std::string& script) {
  constexpr std::size_t maxFirstLine = 256;  // what the system reads of it
  const auto start = readStart(script, maxFirstLine);
  if (!start) return true;
  if (!start->starts_with("#!")) return false;
  const std::string line = replacingOccurrences(start->substr(2, start->find('\n') - 2), "\t", " ");
  return std::ranges::any_of(split(line, ' '), [&](std::string_view word) {
    return !word.empty() && lastPathComponent(word) == lastPathComponent(interpreter);
  });
}

std::optional<std::string> bundleOfProcess(pid_t id) {
  const auto program = programOfProcess(id);
  // A program that was deleted or replaced since has a remark after its name, which is no part of the bundle's path.
  if (program) {
    if (auto bundle = bundleOfProgram(*program)) return bundle;
  }
  constexpr std::size_t maxCommandLine = std::size_t{4} * PATH_MAX;
  const auto commandLine = readStart(inProc(id, "cmdline"), maxCommandLine);
  if (!commandLine || commandLine->empty()) return std::nullopt;
  const std::vector<std::string_view> arguments = split(*commandLine, '\0');
  if (!program) {
    if (auto bundle = bundleOfProgram(arguments.front())) return bundle;
  }
  const auto script = std::find_if(arguments.begin() + 1, arguments.end(),
                                   [](std::string_view argument) { return !argument.starts_with('-'); });
  if (script == arguments.end()) return std::nullopt;
  auto bundle = bundleOfProgram(*script);
  if (!bundle || !mayBeScriptOf(std::string(arguments.front()), std::string(*script))) return std::nullopt;
  return bundle;
}

}  // namespace

std::optional<std::string> bundleOfProgram(std::string_view program) {
  constexpr std::string_view extension = ".app";
  constexpr std::string_view inside = ".app/Contents/MacOS/";
  const std::size_t at = program.rfind(inside);
  const bool isNamed = at != std::string_view::npos && at > 0 && program[at - 1] != '/';
  if (!program.starts_with('/') || !isNamed || at + inside.size() == program.size()) return std::nullopt;
  return std::string(program.substr(0, at + extension.size()));
}

std::optional<std::uint64_t> startTimeOfProcess(pid_t id) {
  constexpr std::size_t maxStatus = 4096;
  constexpr std::size_t startTimeAfterName = 20;  // the third field is the first after the name
  const auto status = readStart(inProc(id, "stat"), maxStatus);
  if (!status) return std::nullopt;
  // The name is in parentheses, and may itself hold blanks and parentheses.
  const std::size_t nameEnd = status->rfind(')');
  if (nameEnd == std::string::npos) return std::nullopt;
  const auto fields = split(std::string_view(*status).substr(nameEnd + 1), ' ');
  if (fields.size() <= startTimeAfterName) return std::nullopt;
  return parseNumber<std::uint64_t>(fields[startTimeAfterName]);
}

std::vector<ApplicationProcess> applicationProcesses() {
  const auto close = [](DIR* stream) { ::closedir(stream); };
  const std::unique_ptr<DIR, decltype(close)> stream(::opendir("/proc"), close);
  std::vector<ApplicationProcess> processes;
  while (const dirent* const entry = stream != nullptr ? ::readdir(stream.get()) : nullptr) {
    const auto id = parseNumber<pid_t>(entry->d_name);
    if (!id) continue;
    const auto startTime = startTimeOfProcess(*id);
    auto bundle = bundleOfProcess(*id);
    if (startTime && bundle) processes.push_back({*id, *startTime, std::move(*bundle)});
  }
  std::ranges::sort(processes, {},
                    [](const ApplicationProcess& process) { return std::tuple(process.startTime, process.id); });
  return processes;
}
