// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <utility>

#include "platform/Authorization.h"
#include "platform/files/CopyPool.h"
#include "platform/files/Elevation.h"
#include "platform/files/Places.h"
#include "platform/posix/PosixUser.h"

/// Administrator rights: root runs the tools itself, and for anybody else the system asks for a password and runs them.
class MacAuthorizations : public Authorizations {
 public:
  MacAuthorizations(const Volume& volume, const UserAccount& user, Places places, CopyPool::Caller caller)
      : setup_{volume, user, std::move(places), {user.id, groupNumber("admin").value_or(user.group)}, caller} {}

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;

  /// What every authorization works with.
  struct Setup {
    const Volume& volume;
    const UserAccount& user;
    Places places;
    Ownership ownership;
    CopyPool::Caller caller;
  };

 private:
  Setup setup_;
};
