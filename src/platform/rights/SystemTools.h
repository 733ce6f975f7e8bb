#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/Volume.h"
#include "platform/posix/PosixUser.h"

/// The path of a program of this system; nothing when it is not installed.
[[nodiscard]] std::optional<std::string> findExecutable(std::string_view name);

/// A tool of this system with its arguments. What it changes is named from `folder`, in which it is to be started: the
/// folder stays the one that was looked up, whatever its path leads to by then.
struct SystemCommand {
  std::string executable;
  std::vector<std::string> arguments;
  FileDescriptor folder = {};
};

/// Stands in for a Mac's system tools: the one table from their paths to what does the same here. Paths of the target
/// volume among the arguments become paths of this system.
class SystemTools {
 public:
  /// `helpersFolder` holds the installer's own tools, on this system; `applicationsFolder` the registered applications,
  /// on the volume.
  SystemTools(const Volume& volume, const PosixUser& user, std::string helpersFolder, std::string applicationsFolder);

  /// Nothing when there is no such tool, when what it is to change has no absolute path, or lies in the installer's own
  /// bundle.
  [[nodiscard]] std::optional<SystemCommand> resolve(const std::string& macPath,
                                                     const std::vector<std::string>& arguments) const;

 private:
  using Arguments = std::vector<std::string>;
  using MakeCommand = std::optional<SystemCommand> (SystemTools::*)(const Arguments& arguments) const;
  struct Tool {
    const char* macPath;
    MakeCommand make;
  };
  static const Tool table[];

  [[nodiscard]] std::optional<SystemCommand> copy(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> remove(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> makeDirectory(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> changeOwner(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> changeMode(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> touch(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> removeAttribute(const Arguments& arguments) const;
  [[nodiscard]] std::optional<SystemCommand> updateApplications(const Arguments& arguments) const;

  /// The tool with so many options as they are, and the one path after them.
  [[nodiscard]] std::optional<SystemCommand> commandOnItem(const std::optional<std::string>& executable,
                                                           const Arguments& arguments, std::size_t options,
                                                           Volume::LastLink lastLink) const;

  const Volume& volume_;
  const PosixUser& user_;
  std::string helpersFolder_;
  std::string applicationsFolder_;
  /// Looked up once: asking the system for a group takes as long as all else before a launch.
  mutable std::map<std::string, std::string> numericOwners_;
};
