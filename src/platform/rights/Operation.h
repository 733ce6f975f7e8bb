// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/rights/Packet.h"

/// A privileged change, as the program asks for it by the path and the arguments of a Mac's system tool. There are no
/// other changes but those of a transaction.
struct Operation {
  enum class Kind {
    remove,                ///< /bin/rm -fR PATH…
    makeFolders,           ///< /bin/mkdir -m775 -p PATH…
    handOver,              ///< /usr/sbin/chown -R USER:admin PATH…
    setMode,               ///< /bin/chmod or /usr/sbin/chmod -R MODE PATH…
    makeFile,              ///< /usr/bin/touch PATH…
    replace,               ///< /bin/mv -f FROM PATH
    removeQuarantineMark,  ///< /usr/bin/xattr -dr com.apple.quarantine PATH…
    updateApplications,    ///< lsregister -apps
  };
  Kind kind = Kind::remove;
  mode_t mode = 0;                      ///< for setMode
  std::string source = {};              ///< for replace
  std::vector<std::string> paths = {};  ///< on the volume, absolute; not resolved yet
};

/// The operation that a tool with these arguments stands for; none for any other tool, option or owner. The packet's
/// name is the path of the tool. `userName` is the short name of the user who is served.
[[nodiscard]] std::optional<Operation> operationFor(const Packet& launch, const std::string& userName);
