// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Transaction.h"
#include "platform/rights/HelperConnection.h"
#include "support/TestMachine.h"

/// The account that the tests' helpers serve; it owns nothing but what a test gives it.
inline constexpr uid_t nobody = 65534;

/// Who makes a privileged change: root in the test's process, or the helper for a user.
enum class Way { byRoot, byHelper };
inline void PrintTo(Way way, std::ostream* out) { *out << (way == Way::byRoot ? "ByRoot" : "ByHelper"); }

/// Lets a transaction go on.
struct PatientObserver : TransactionObserver {
  void willStage(std::size_t /*item*/) override {}
  bool didStage(std::size_t /*item*/, const ItemResult& /*result*/) override { return true; }
  bool whileBusy(const CopiedAmount& /*copied*/) override { return true; }
};

/// Owner and group of the item itself, as numbers: "0:0".
[[nodiscard]] std::string ownerOf(const fs::path& path);

/// The real helper, started by root as sudo would, for a connection that was made by another user.
struct HelperProcess {
  /// `variable` is the helper's environment, such as "SUDO_UID=1".
  HelperProcess(const fs::path& program, const fs::path& volume, uid_t user = nobody, std::string variable = "");
  ~HelperProcess();
  HelperProcess(const HelperProcess&) = delete;
  HelperProcess& operator=(const HelperProcess&) = delete;

  /// Waits for the helper's end, for which its connection must be closed; exit status, or minus the signal.
  int end();

  MessageSocket socket;
  pid_t process = 0;
};

/// A volume of root's, a bundle with the helper in it, and the helper.
class HelperTest : public MachineTest {
 protected:
  void SetUp() override;

  /// Has the helper make a change. Returns why it could not be made, or "refused" when there is no such change.
  std::string run(const std::string& tool, const std::vector<std::string>& arguments);
  /// A folder of the user's.
  void makeOwnFolder(const std::string& path);

  const std::string owner_ = "nobody:admin";
  std::string handedOver_;
  fs::path program_;
  std::optional<HelperProcess> helper_;
  std::shared_ptr<HelperConnection> connection_;
  int signal_ = 0;  ///< that the helper told of
};
