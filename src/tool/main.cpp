// SPDX-License-Identifier: Apache-2.0

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/InspectedBundle.h"
#include "platform/SystemPlatform.h"
#include "tool/Tool.h"

namespace {

int complain(const std::string& what, ToolStatus status) {
  std::cerr << "InstallerTool: " << onOneLine(what) << '\n';
  return static_cast<int>(status);
}

/// The folder that the item is in, also for a name alone.
std::string folderOf(const std::string& path) {
  const std::string folder = deletingLastPathComponent(path);
  return folder.empty() ? "." : folder;
}

int become(const std::string& script, const ToolRequest& request) {
  return complain(becomeHelper(script, request.scriptArguments()).description(), ToolStatus::unavailable);
}

int preview(ToolRequest request) {
  if (const auto system = makePlatformForMaker(request.kit.bundle)) {
    const InspectedBundle bundle((*system)->platform());
    if (!request.kit.language.empty() && !bundle.hasLanguage(request.kit.language)) {
      return complain(request.kit.bundle + " has no language " + request.kit.language, ToolStatus::usage);
    }
    request.kit.payload = bundle.setting("payload");
    if (!request.kit.payload.empty() && !bundle.hasPayloadFolder()) {
      const std::string reason = " is no folder beside " + request.kit.bundle;
      return complain("the payload \"" + request.kit.payload + "\"" + reason, ToolStatus::noInput);
    }
  }
  return become("preview", request);
}

/// For texts alone: the volume may be none. Null when there is no bundle either.
std::unique_ptr<SystemPlatform> makeForOwnBundle() {
  auto made = makePlatformForMaker("", ".");
  return made ? std::move(*made) : nullptr;
}

int run(int count, const char* const* words) {
  auto system = makeSystemPlatform(targetAmong(count, words), Surface::console);
  const auto ofBundle = system ? nullptr : makeForOwnBundle();
  Platform* const own = ofBundle != nullptr ? &ofBundle->platform() : nullptr;
  const ToolTexts texts(system ? &(*system)->platform() : own);
  const ToolArguments arguments = readToolArguments(count, words, texts);
  if (!arguments.isRequest) {
    std::cout << arguments.output << std::flush;
    std::cerr << arguments.errors;
    return static_cast<int>(std::cout ? arguments.status : ToolStatus::output);
  }
  using Command = ToolRequest::Command;
  const ToolRequest& request = arguments.request;
  const Command command = request.command;
  if (command == Command::preview) return preview(request);
  if (command == Command::pack) return become("pack", request);
  if (command == Command::make) system = makePlatformForMaker("", folderOf(request.kit.newFolder));
  if (command == Command::check) system = makePlatformForMaker(request.kit.bundle);
  if (!system) return complain(system.error().description(), ToolStatus::noInput);
  const int status = runTool(request, **system, {std::cin, std::cout, std::cerr});
  std::cout.flush();
  return std::cout ? status : complain("the output cannot be written", ToolStatus::output);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& exception) {  // no memory, mostly
    return complain(exception.what(), ToolStatus::system);
  }
}
