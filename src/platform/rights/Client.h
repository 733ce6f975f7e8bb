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

/// The process acts with the rights of the client while the object lives, and with its own afterwards. The process has
/// one thread when it is made and when it goes; threads made in between have the client's rights. A process that cannot
/// change sides ends.
class AsClient {
 public:
  explicit AsClient(const Client& client);
  ~AsClient();
  AsClient(const AsClient&) = delete;
  AsClient& operator=(const AsClient&) = delete;
};

/// Becomes the client for good; ends the process if that cannot be done.
void becomeClient(const Client& client);

/// Gives up, for this process and all that it starts, whatever the helper does not need: every capability but those for
/// other people's files and for becoming the client, programs that gain rights, being looked into. False when the
/// system does not let it.
[[nodiscard]] bool confineProcess();
