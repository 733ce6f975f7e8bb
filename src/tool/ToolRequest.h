// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "tool/ToolTexts.h"

/// The statuses that the tool ends with, numbered as in sysexits.h. A signal that ended it is 128 plus its number.
enum class ToolStatus {
  success = 0,
  differences = 1,    ///< something is not as an install leaves it, or was kept; a bundle has mistakes
  usage = 64,         ///< the arguments are wrong
  noInput = 66,       ///< the target cannot be entered or is no Mac volume, or there is no such bundle
  unavailable = 69,   ///< nobody can be asked to confirm, or changes cannot be begun
  system = 71,        ///< no memory
  cannotCreate = 73,  ///< what was to be made is there already, or its folder cannot be written
  output = 74,        ///< the output could not be written, or the disk failed
  noRights = 77,      ///< administrator rights were refused
};

/// What the tool was asked to do.
struct ToolRequest {
  enum class Command { plan, hosts, verify, remove, munki, make, check, pack, preview };
  Command command = Command::plan;
  std::string target = "/";
  bool isJson = false;
  bool isOnlyLogged = false;                   ///< verify: nothing but what the log lists
  bool isConfirmed = false;                    ///< remove: do not ask
  bool isTrial = false;                        ///< remove: say what would be removed
  std::string folder = "/Library/Management";  ///< munki: where the installer is put
  bool keepsChanged = false;                   ///< remove: leave what was changed since the install
  /// Commands that a script of the bundle carries out: its arguments.
  [[nodiscard]] std::vector<std::string> scriptArguments() const;
  struct Kit {
    std::string newFolder = {};   ///< make: where
    std::string bundle = {};      ///< the installer that is checked, packed or shown
    std::string identity = {};    ///< pack: signs it
    std::string profile = {};     ///< pack: notarizes it
    std::string language = {};    ///< preview
    std::string appearance = {};  ///< preview: "light" or "dark"
    std::string hosts = "3";      ///< preview: number of applications to install into
    std::string pictures = {};    ///< preview: folder for pictures; empty: a window
    std::string payload = {};     ///< preview: a folder beside the bundle; empty: it is in the bundle
  };
  Kit kit = {};
};

/// A request, or what to print instead of carrying one out.
struct ToolArguments {
  ToolRequest request = {};
  bool isRequest = true;
  std::string output = {};
  std::string errors = {};
  ToolStatus status = ToolStatus::success;
};

/// The value of "--target" among the arguments, as far as it can be told before they are understood.
[[nodiscard]] std::string targetAmong(int count, const char* const* arguments);

/// Reads the arguments, the program's name first. Help and version are texts to print.
[[nodiscard]] ToolArguments readToolArguments(int count, const char* const* arguments, const ToolTexts& texts);
