#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/rights/HelperConnection.h"
#include "support/TestMachine.h"

/// The account that the tests' helpers serve; it owns nothing but what a test gives it.
inline constexpr uid_t nobody = 65534;

/// Owner and group of the item itself, as numbers: "0:0".
[[nodiscard]] std::string ownerOf(const fs::path& path);

/// The real helper, started by root as sudo would, for a connection that was made by another user.
class HelperProcess {
 public:
  /// `environment` is what the helper gets, such as "SUDO_UID=1".
  HelperProcess(const fs::path& program, const fs::path& volume, uid_t user = nobody,
                const std::vector<std::string>& environment = {});
  ~HelperProcess();
  HelperProcess(const HelperProcess&) = delete;
  HelperProcess& operator=(const HelperProcess&) = delete;

  [[nodiscard]] pid_t id() const { return process_; }
  [[nodiscard]] HelperConnection& connection() { return *connection_; }
  /// The bare socket, for what no installer would say.
  [[nodiscard]] MessageSocket takeSocket() { return std::move(socket_); }
  /// Closes the connection, waits for the helper's end, and returns its exit status, or minus the signal that ended it.
  int end();

  /// Launches and waits; the status, and 0 for the bytes that came.
  LaunchStatus run(const std::string& tool, const std::vector<std::string>& arguments);

 private:
  friend class HelperTest;
  pid_t process_ = 0;
  MessageSocket socket_;
  std::optional<HelperConnection> connection_;
};

/// A volume of root's, a bundle with the helper in it, and the helper.
class HelperTest : public MachineTest {
 protected:
  void SetUp() override;

  /// Starts the helper that run() speaks to.
  void start();
  LaunchStatus run(const std::string& tool, const std::vector<std::string>& arguments) {
    return helper_->run(tool, arguments);
  }
  /// A folder of the user's.
  fs::path makeOwnFolder(const std::string& path);

  const std::string support_ = "/Library/Application Support/Corvane";
  const std::string owner_ = "nobody:admin";
  std::string handedOver_;
  fs::path program_;
  std::optional<HelperProcess> helper_;
};
