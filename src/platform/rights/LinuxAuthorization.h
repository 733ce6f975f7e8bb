#pragma once

#include <memory>

#include "platform/Authorization.h"
#include "platform/rights/HelperStart.h"
#include "platform/rights/SystemTools.h"

/// Administrator rights: root runs the tools itself, and everybody else has one helper run them, which the system asks
/// a password for.
class LinuxAuthorizations : public Authorizations {
 public:
  LinuxAuthorizations(const SystemTools& tools, HelperSetup setup) : tools_(tools), setup_(std::move(setup)) {}

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;

 private:
  const SystemTools& tools_;
  HelperSetup setup_;
};
