#pragma once

#include <functional>
#include <string>

#include "platform/files/Volume.h"
#include "platform/rights/Client.h"
#include "platform/rights/Operation.h"
#include "platform/rights/Places.h"

/// Does on the volume what the installer's tools do, in a process of its own for each.
///
/// Everything is tried with the client's own rights first. Only what they do not suffice for, and only below the
/// places, is done with the helper's: and then what is made belongs to the client, what is handed over belonged to the
/// client before, and what is copied was read as the client. Paths are resolved here, once, into an open folder and a
/// name; nothing is followed after that.
class HelperWork {
 public:
  HelperWork(const Volume& volume, const Client& client, std::string applicationsFolder);

  /// Whether the tool can be started at all.
  [[nodiscard]] bool canStart(const Operation& operation) const;

  /// Does it and returns what the tool would: 0, or 1 when something could not be done, which standard error then
  /// tells. May become the client, or another program.
  int run(const Operation& operation) const;

 private:
  using Work = std::function<Status(const Volume::Place& place)>;
  enum class Rights { client, helper };

  [[nodiscard]] Status runOnPath(const Operation& operation, const std::string& path) const;
  [[nodiscard]] Status withFewestRights(const std::string& path,
                                        const std::function<Status(const Volume::Place&, Rights)>& work) const;
  [[nodiscard]] Status remove(const std::string& path) const;
  [[nodiscard]] Status makeFolder(const std::string& path, mode_t mode) const;
  [[nodiscard]] Status makeOneFolder(const std::string& path, mode_t mode) const;
  [[nodiscard]] Status makeFolderForClient(int folder, const std::string& name, mode_t mode,
                                           FileDescriptor& made) const;
  [[nodiscard]] Status handOver(const std::string& path) const;
  [[nodiscard]] Status touch(const std::string& path) const;
  [[nodiscard]] Status copy(const std::string& source, const std::string& target) const;
  [[nodiscard]] Status copyInto(const Volume::Place& place, const std::string& source) const;
  [[nodiscard]] Status asClient(const std::string& path, const Work& work) const;
  int updateApplications() const;

  const Volume& volume_;
  const Client& client_;
  gid_t adminGroup_;
  std::string applicationsFolder_;
  Places places_;
};
