// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "platform/Authorization.h"
#include "platform/Log.h"
#include "platform/rights/HelperElevation.h"
#include "platform/rights/HelperStart.h"
#include "platform/rights/Operations.h"

/// Administrator rights: root makes privileged changes itself, and everybody else has one helper make them, which the
/// system asks a password for.
class LinuxAuthorizations : public Authorizations {
 public:
  /// `applicationsFolder` holds the entries of registered applications.
  LinuxAuthorizations(const Volume& volume, const UserAccount& user, Places places,
                      const std::string& applicationsFolder, HelperSetup setup, Log& log);

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;

 private:
  const Volume& volume_;
  RootElevation elevation_;
  Operations operations_;
  HelperSetup setup_;
  Log& log_;
};
