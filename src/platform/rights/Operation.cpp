// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/Operation.h"

#include <limits.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace {

using Kind = Operation::Kind;

/// Stands for "USER:admin" among the options.
constexpr std::string_view ownerOption = "OWNER";

/// A tool, and the options that must come before the paths.
struct Form {
  std::string_view tool;
  std::array<std::string_view, 2> options;  ///< unused ones are empty
  Kind kind;
  mode_t mode = 0;
};

constexpr std::array<Form, 10> forms = {{
    {"/bin/rm", {"-fR"}, Kind::remove},
    {"/bin/mkdir", {"-m775", "-p"}, Kind::makeFolders},
    {"/usr/sbin/chown", {"-R", ownerOption}, Kind::handOver},
    {"/bin/chmod", {"-R", "0775"}, Kind::setMode, 0775},
    {"/bin/chmod", {"-R", "0664"}, Kind::setMode, 0664},
    {"/usr/sbin/chmod", {"-R", "0644"}, Kind::setMode, 0644},
    {"/usr/bin/touch", {}, Kind::makeFile},
    {"/bin/mv", {"-f"}, Kind::replace},
    {"/usr/bin/xattr", {"-dr", "com.apple.quarantine"}, Kind::removeQuarantineMark},
    {"/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
     "Support/lsregister",
     {"-apps"},
     Kind::updateApplications},
}};

bool isAbsolute(const std::string& path) {
  return path.starts_with('/') && path.size() < PATH_MAX && path.find('\0') == std::string::npos;
}

/// How many options the form has, when the launch has them all; nothing when it is no launch of this form.
std::optional<std::size_t> optionsOf(const Form& form, const Packet& launch, const std::string& owner) {
  if (launch.name != form.tool) return std::nullopt;
  std::size_t count = 0;
  for (const std::string_view option : form.options) {
    if (option.empty()) break;
    if (count == launch.texts.size()) return std::nullopt;
    if (launch.texts[count] != (option == ownerOption ? std::string_view(owner) : option)) return std::nullopt;
    ++count;
  }
  return count;
}

/// Whether the operation has as many paths as it needs, and all of them can be paths.
bool isComplete(const Operation& operation) {
  if (operation.kind == Kind::updateApplications) return operation.paths.empty();
  if (operation.kind == Kind::replace && operation.paths.size() != 2) return false;
  return !operation.paths.empty() && std::ranges::all_of(operation.paths, isAbsolute);
}

}  // namespace

std::optional<Operation> operationFor(const Packet& launch, const std::string& userName) {
  const std::string owner = userName + ":admin";
  for (const Form& form : forms) {
    const auto options = optionsOf(form, launch, owner);
    if (!options) continue;
    Operation operation{form.kind, form.mode};
    operation.paths.assign(launch.texts.begin() + static_cast<std::ptrdiff_t>(*options), launch.texts.end());
    if (!isComplete(operation)) return std::nullopt;
    if (form.kind == Kind::replace) {
      operation.source = operation.paths.front();
      operation.paths.erase(operation.paths.begin());
    }
    return operation;
  }
  return std::nullopt;
}
