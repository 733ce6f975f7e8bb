#include "platform/rights/HelperAuthorization.h"

#include <sys/wait.h>

#include <cerrno>
#include <utility>
#include <variant>

bool HelperAuthorization::obtain(std::uint32_t flags) {
  return (flags & extendRights) != 0 && !askingCommand(askingMeans(), setup_.surface).empty();
}

LaunchStatus HelperAuthorization::executeWithPrivileges(const std::string& toolPath,
                                                        const std::vector<std::string>& arguments,
                                                        std::unique_ptr<CommunicationsPipe>& pipe) {
  if (!helper_ && failure_ == launchSucceeded) {
    auto started = startHelper(setup_, askingMeans());
    if (auto* const connection = std::get_if<HelperConnection>(&started)) {
      helper_.emplace(std::move(*connection));
    } else {
      failure_ = std::get<LaunchStatus>(started);
    }
  }
  return helper_ ? helper_->launch({toolPath, arguments}, pipe) : failure_;
}

void HelperAuthorization::waitForAnyChild() {
  if (helper_ && helper_->hasTools()) {
    helper_->waitForTool();
    return;
  }
  while (::wait(nullptr) < 0 && errno == EINTR) {
  }
}
