#include "platform/linux/LinuxWorkspace.h"

std::vector<std::string> LinuxWorkspace::launchedApplications() const { return {}; }

Workspace::Observation LinuxWorkspace::observeTerminations(TerminationHandler /*handler*/) { return nullptr; }

std::unique_ptr<RunningApplication> LinuxWorkspace::launchHidden(const std::string& /*path*/,
                                                                 const std::vector<std::string>& /*arguments*/) {
  return nullptr;
}

void LinuxWorkspace::openUrl(const std::string& /*url*/) {}

std::string LinuxWorkspace::iconFile(const std::string& /*path*/) const { return {}; }
