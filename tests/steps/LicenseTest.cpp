// SPDX-License-Identifier: Apache-2.0

#include "steps/LicenseModel.h"
#include "support/TestMachine.h"

namespace {

using LicenseTest = MachineTest;

TEST_F(LicenseTest, TellsAMissingAgreementFromAnEmptyOne) {
  const auto licence = [this] { return LicenseModel(platform_).licenseText(); };
  const fs::path file = machine_.inBundle("Resources/en.lproj/license.txt");
  EXPECT_EQ(licence(), std::nullopt);
  writeFile(file, "");
  EXPECT_EQ(licence(), "");
  writeFile(file, "Größe\n");
  EXPECT_EQ(licence(), "Größe\n");
  writeFile(file, "one\r\ntwo\rthree\r\n");
  EXPECT_EQ(licence(), "one\ntwo\nthree\n") << "however its lines end";
  writeFile(file, "%PRODUCTNAME% is %COMPANYNAME%'s");
  EXPECT_EQ(licence(), "Dunmore 3 is Corvane's");
  writeFile(file,
            "Gr\xF6\xDF"
            "e");
  EXPECT_EQ(licence(), std::nullopt) << "not UTF-8";
  fs::remove(file);
  fs::create_directory(file);
  EXPECT_EQ(licence(), std::nullopt) << "cannot be read";
}

}  // namespace
