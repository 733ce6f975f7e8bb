// SPDX-License-Identifier: Apache-2.0

#include "install/launching/OneLineTasksWithOutput.h"

#include <array>
#include <cstdint>
#include <memory>

#include "foundation/Exception.h"
#include "foundation/Text.h"
#include "install/launching/TaskOutputReader.h"

namespace OneLineTasksWithOutput {
namespace {

Error makeError(std::int32_t code) { return {std::string(errorDomain), code}; }

std::string decodeOutput(const std::string& bytes) {
  auto text = decodeUtf8(bytes);
  if (!text) throw Exception("the tool's output is not UTF-8");
  return std::move(*text);
}

std::optional<Error> launch(const std::string& path, const std::vector<std::string>& arguments,
                            Authorization& authorization, bool wait, std::unique_ptr<CommunicationsPipe>& pipe) {
  const LaunchStatus status = authorization.executeWithPrivileges(path, arguments, pipe);
  // Any child will do: one that was started without waiting may be the one that ends here, and this tool then still
  // runs.
  if (wait) authorization.waitForAnyChild();
  const std::int32_t code = codeFromStatus(status);
  return code == 0 ? std::nullopt : std::optional(makeError(code));
}

}  // namespace

std::int32_t codeFromStatus(LaunchStatus status) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(status)));
}

LaunchResult stringByLaunchingPath(Platform& platform, const std::string& path,
                                   const std::vector<std::string>& arguments) {
  try {
    const auto reader = TaskOutputReader::initWithTask(platform, platform.tasks.makeTask(path, arguments));
    reader->launchTaskAndRunSynchronous();
    LaunchResult result{.output = decodeOutput(reader->standardOutputData()), .error = std::nullopt};
    const std::string errorText = decodeOutput(reader->standardErrorData());
    if (!errorText.empty()) {
      result.error = makeError(wroteStandardError);
      result.error->userInfo.emplace(standardErrorKey, errorText);
    }
    return result;
  } catch (const Exception& exception) {
    Error error = makeError(launchRaised);
    error.userInfo.emplace(Error::localizedDescriptionKey, exception.what());
    return {.output = std::nullopt, .error = std::move(error)};
  }
}

LaunchResult stringByLaunchingPath(const std::string& path, const std::vector<std::string>& arguments,
                                   Authorization& authorization, bool wait) {
  std::unique_ptr<CommunicationsPipe> pipe;
  if (auto error = launch(path, arguments, authorization, wait, pipe)) {
    return {.output = std::nullopt, .error = std::move(error)};
  }
  std::string text;
  std::array<char, 64> block{};
  bool isFirst = true;
  // A status whose low half alone is zero counts as success and comes without a pipe.
  while (const std::size_t length = pipe == nullptr ? 0 : pipe->read(block.data(), block.size())) {
    // The first block is dropped on purpose: it is where the system's launcher may put a greeting of its own.
    // A block that is not UTF-8 by itself (a character may be cut at its end) adds nothing.
    if (!isFirst) text += decodeUtf8({block.data(), length}).value_or("");
    isFirst = false;
  }
  return {.output = std::move(text), .error = std::nullopt};
}

std::optional<Error> authorizedLaunchPath(const std::string& path, const std::vector<std::string>& arguments,
                                          Authorization& authorization, bool wait) {
  // Nothing is read. The pipe closes with this call, when the tool has been waited for, so that a long install does not
  // run out of descriptors.
  std::unique_ptr<CommunicationsPipe> pipe;
  return launch(path, arguments, authorization, wait, pipe);
}

}  // namespace OneLineTasksWithOutput
