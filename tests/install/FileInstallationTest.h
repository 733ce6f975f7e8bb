// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "install/InstallFilesController.h"
#include "support/TestMachine.h"

/// Installs files into the folder /T.
class FileInstallationTest : public MachineTest {
 protected:
  FileInstallationTest() {
    EXPECT_TRUE(controller_.obtainAuthorization());
    fs::create_directories(on("/T"));
  }

  std::string source(const std::string& name) {
    writeFile(machine_.payload(name), "new");
    return machine_.payload(name).string();
  }
  void install(const Paths& sources, bool isBundle = false, bool alwaysInstall = true) {
    controller_.installSourceFiles(sources, "/T", isBundle, alwaysInstall);
  }

  [[nodiscard]] Paths failedPaths() const {
    Paths paths;
    for (const ReportedProblem& failure : controller_.report().failures) paths.push_back(failure.path);
    return paths;
  }

  const std::string owner_ = machine_.account().name + ":admin";
  RecordingAuthorizations& rights_ = machine_.authorizations;
  InstallFilesController controller_{platform_};
};
