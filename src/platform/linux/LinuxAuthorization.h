#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Authorization.h"
#include "platform/linux/SystemTools.h"

/// Administrator rights of a process that has them: root runs the tools itself. Nobody else obtains any.
class LinuxAuthorizations : public Authorizations {
 public:
  explicit LinuxAuthorizations(const SystemTools& tools) : tools_(tools) {}

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;

 private:
  const SystemTools& tools_;
};
