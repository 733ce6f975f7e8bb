#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/rights/Request.h"

/// What a request amounts to. There is nothing else that the helper can do.
struct Operation {
  enum class Kind {
    remove,
    makeFolder,
    handOver,
    setMode,
    touch,
    removeQuarantineMark,
    copy,
    updateApplications,
  };
  Kind kind = Kind::remove;
  mode_t mode = 0;                      ///< for makeFolder and setMode
  std::string source = {};              ///< for copy
  std::vector<std::string> paths = {};  ///< on the volume, absolute; not resolved yet
};

/// The operation that a tool with these arguments stands for, when it is one that the installer launches, with the
/// options that it gives them, for the user of that name.
[[nodiscard]] std::optional<Operation> operationFor(const Request& request, const std::string& userName);
