// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/Client.h"

#include <grp.h>
#include <linux/capability.h>
#include <linux/securebits.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "platform/files/SystemCalls.h"

namespace {

Error notServed(std::string_view why) { return Error::posix(std::errc::operation_not_permitted, why); }

/// Whether sudo and pkexec, if they were used, were called by this user.
bool wasCalledBy(uid_t user) {
  for (const char* const variable : {"SUDO_UID", "PKEXEC_UID"}) {
    const char* const caller = std::getenv(variable);
    if (caller != nullptr && caller != std::to_string(user)) return false;
  }
  return true;
}

Result<std::vector<gid_t>> groupsOf(int socket) {
  std::vector<gid_t> groups(64);
  auto size = static_cast<socklen_t>(groups.size() * sizeof(gid_t));
  int result = ::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size);
  if (result != 0 && errno == ERANGE) {
    groups.resize(size / sizeof(gid_t));
    result = ::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size);
  }
  if (result != 0) return systemError(errno, "groups of the caller");
  groups.resize(size / sizeof(gid_t));
  return groups;
}

/// Ends the process: changing the user has failed half-way.
void require(bool succeeded) {
  if (!succeeded) std::_Exit(EXIT_FAILURE);
}

constexpr std::array<unsigned, 5> neededCapabilities = {CAP_CHOWN, CAP_DAC_OVERRIDE, CAP_FOWNER, CAP_SETUID,
                                                        CAP_SETGID};

bool isNeeded(unsigned capability) {
  for (const unsigned needed : neededCapabilities) {
    if (needed == capability) return true;
  }
  return false;
}

bool dropCapabilities() {
  for (unsigned capability = 0; ::prctl(PR_CAPBSET_READ, capability, 0, 0, 0) >= 0; ++capability) {
    if (!isNeeded(capability) && ::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0) return false;
  }
  constexpr unsigned long bits = SECBIT_NOROOT | SECBIT_NOROOT_LOCKED | SECBIT_KEEP_CAPS_LOCKED |
                                 SECBIT_NO_CAP_AMBIENT_RAISE | SECBIT_NO_CAP_AMBIENT_RAISE_LOCKED;
  if (::prctl(PR_SET_SECUREBITS, bits, 0, 0, 0) != 0) return false;

  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, 2> sets{};
  if (::syscall(SYS_capget, &header, sets.data()) != 0) return false;
  std::uint32_t needed = 0;
  for (const unsigned capability : neededCapabilities) needed |= 1U << capability;
  sets[0].permitted &= needed;
  sets[0].effective = sets[0].permitted;
  sets[0].inheritable = 0;
  sets[1] = {};
  return sets[0].permitted == needed && ::syscall(SYS_capset, &header, sets.data()) == 0;
}

}  // namespace

Result<Client> clientOf(int socket) {
  int type = 0;
  int domain = 0;
  socklen_t size = sizeof type;
  if (::getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &size) != 0) return systemError(errno, "standard input");
  size = sizeof domain;
  if (::getsockopt(socket, SOL_SOCKET, SO_DOMAIN, &domain, &size) != 0) return systemError(errno, "standard input");
  if (domain != AF_UNIX || type != SOCK_SEQPACKET) return notServed("standard input");

  ucred caller{};
  size = sizeof caller;
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &caller, &size) != 0) return systemError(errno, "the caller");
  if (caller.uid == 0 || !wasCalledBy(caller.uid)) return notServed("the caller");
  const passwd* const entry = ::getpwuid(caller.uid);
  if (entry == nullptr) return notServed("the caller");
  Client client{{caller.uid, caller.gid, entry->pw_name, entry->pw_dir}, {}};
  auto groups = groupsOf(socket);
  if (!groups) return groups.error();
  client.groups = std::move(*groups);
  return client;
}

// The C library's functions would change all threads, with those that copy. The system calls change one thread.

void becomeClient(const Client& client) {
  constexpr int unchanged = -1;
  require(::syscall(SYS_setgroups, client.groups.size(), client.groups.data()) == 0);
  require(::syscall(SYS_setresgid, unchanged, client.account.group, unchanged) == 0);
  require(::syscall(SYS_setresuid, unchanged, client.account.id, unchanged) == 0);
}

AsHelper::AsHelper(const Client& client) : client_(client) {
  constexpr int unchanged = -1;
  require(::syscall(SYS_setresuid, unchanged, 0, unchanged) == 0);
  require(::syscall(SYS_setresgid, unchanged, 0, unchanged) == 0);
  require(::syscall(SYS_setgroups, 0, nullptr) == 0);
}

AsHelper::~AsHelper() { becomeClient(client_); }

bool confineProcess() {
  const rlimit none{0, 0};
  return ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0 && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::setrlimit(RLIMIT_CORE, &none) == 0 && dropCapabilities();
}
