// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/files/Places.h"
#include "platform/rights/Client.h"
#include "platform/rights/Operations.h"

/// The rights of root in its own process: they reach everywhere without help. The places are what root does for a user,
/// no more.
class RootElevation : public LocalElevation {
 public:
  explicit RootElevation(Places places) : places_(std::move(places)) {}

  [[nodiscard]] bool covers(const std::string& resolved) const override { return places_.cover(resolved); }
  Status makeFolder(const Volume::Spot& place, mode_t mode) override { return none_.makeFolder(place, mode); }
  Status move(const Volume::Spot& from, const Volume::Spot& to, Move how) override { return none_.move(from, to, how); }
  Status remove(const Volume::Spot& place) override { return none_.remove(place); }
  Status handOver(const Volume::Spot& place) override { return none_.handOver(place); }
  Status makeFile(const Volume::Spot& place) override { return none_.remove(place); }

 private:
  Places places_;
  NoElevation none_;
};

/// The rights of the helper, where its client's do not suffice, in the places and nowhere else.
class HelperElevation : public LocalElevation {
 public:
  HelperElevation(const Client& client, Ownership ownership, Places places)
      : client_(client), ownership_(ownership), places_(std::move(places)) {}

  [[nodiscard]] bool covers(const std::string& resolved) const override;
  Status makeFolder(const Volume::Spot& place, mode_t mode) override;
  Status move(const Volume::Spot& from, const Volume::Spot& to, Move how) override;
  Status remove(const Volume::Spot& place) override;
  Status handOver(const Volume::Spot& place) override;
  Status makeFile(const Volume::Spot& place) override;

 private:
  const Client& client_;
  const Ownership ownership_;
  const Places places_;
};
