// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/posix/PosixUser.h"

/// The one user whom the helper serves: who made the connection, as the system knows it.
struct Client {
  UserAccount account;
  std::vector<gid_t> groups;
};

/// Asks the system who made the connection. Fails for root, who needs no helper, for a user whom the database does not
/// know, and when sudo or pkexec says that somebody else called it.
[[nodiscard]] Result<Client> clientOf(int socket);

/// Gives this thread the rights of the client, and those that it starts from now on. Keeps those of the helper at hand
/// for AsHelper. A process that cannot change sides ends.
void becomeClient(const Client& client);

/// This thread has the rights of the helper while the object lives, and those of the client again afterwards. Other
/// threads keep theirs.
class AsHelper {
 public:
  explicit AsHelper(const Client& client);
  ~AsHelper();
  AsHelper(const AsHelper&) = delete;
  AsHelper& operator=(const AsHelper&) = delete;

 private:
  const Client& client_;
};

/// Gives up, for this process and all that it starts, whatever the helper does not need: every capability but those for
/// other people's files and for becoming the client, programs that gain rights, being looked into. False when the
/// system does not let it.
[[nodiscard]] bool confineProcess();
