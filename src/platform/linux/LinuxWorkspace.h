#pragma once

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Workspace.h"
#include "platform/posix/DescriptorRunLoop.h"
#include "platform/posix/Volume.h"

/// Applications are programs in the Contents/MacOS folder of a bundle.
class LinuxWorkspace : public Workspace {
 public:
  LinuxWorkspace(const Volume& volume, const FileSystem& files, const Bundles& bundles, DescriptorRunLoop& runLoop)
      : volume_(volume), files_(files), bundles_(bundles), runLoop_(runLoop) {}

  [[nodiscard]] std::vector<std::string> launchedApplications() const override;
  [[nodiscard]] Observation observeTerminations(TerminationHandler handler) override;
  std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                   const std::vector<std::string>& arguments) override;
  void openUrl(const std::string& url) override;
  [[nodiscard]] std::string iconFile(const std::string& path) const override;

 private:
  const Volume& volume_;
  const FileSystem& files_;
  const Bundles& bundles_;
  DescriptorRunLoop& runLoop_;
};
