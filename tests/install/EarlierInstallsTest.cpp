#include "hosts/UnknownHostModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"

namespace {

class EarlierInstallsTest : public MachineTest {
 protected:
  EarlierInstallsTest() {
    EXPECT_TRUE(controller_.obtainAuthorization());
    writeFile(machine_.inBundle("SharedSupport/PlugIn/Old.plugin/Contents/x"), "");
    writeFile(machine_.inBundle("SharedSupport/PlugIn/Zoom*.txt"), "");
    writeFile(machine_.inBundle("SharedSupport/AutoLayer/Layer.plugin"), "");
  }

  void unInstall() {
    controller_.unInstallForHost(*UnknownHostModel::initWithPlugInPath(platform_, "/Host/Plug-Ins/"));
  }
  [[nodiscard]] Paths removals() const { return machine_.authorizations.launches; }

  InstallFilesController controller_{platform_};
};

TEST_F(EarlierInstallsTest, GoWhereverTheyLieAndNothingElseDoes) {
  const Paths kept = {"/Host/Plug-Ins/old.plugin", "/Host/Plug-Ins/Old.plugin 2",      "/Host/Plug-Ins/Zoom 2.txt",
                      "/Host/Old.plugin",          "/Elsewhere/Old.plugin/Contents/x", "/Host/Plug-Ins/sub/x"};
  for (const std::string& path : kept) writeFile(on(path), "");
  fs::create_directory_symlink("/Elsewhere", on("/Host/Plug-Ins/link"));
  fs::create_directory_symlink("/Elsewhere/Old.plugin", on("/Host/Plug-Ins/sub/Old.plugin"));
  const Paths removed = {"/Host/Plug-Ins/Corvane/$(touch y)/Old.plugin", "/Host/Plug-Ins/Old.plugin",
                         "/Host/Plug-Ins/sub/Old.plugin", "/Host/Plug-Ins/Zoom*.txt",
                         "/Host/Plug-Ins/A.app/Contents/Layer.plugin"};
  for (const std::string& path : {removed[0], removed[1]}) writeFile(on(path + "/Contents/deep"), "");
  for (const std::string& path : {removed[3], removed[4]}) writeFile(on(path), "");

  unInstall();
  for (const std::string& path : kept) EXPECT_TRUE(fs::exists(on(path))) << path;
  for (const std::string& path : removed) EXPECT_FALSE(fs::is_symlink(on(path)) || fs::exists(on(path))) << path;
  Paths launches;
  for (const std::string& path : removed) launches.push_back("/bin/rm|-fR|" + path);
  EXPECT_EQ(removals(), launches) << "the plug-ins first";
  EXPECT_EQ(log_.count("found "), 6);
  EXPECT_EQ(log_.count("found Zoom 2.txt at /Host/Plug-Ins/Zoom 2.txt"), 1) << "told of, and left alone";
  EXPECT_FALSE(controller_.authDenied() || controller_.fileOpErrorOccurred());
}

TEST_F(EarlierInstallsTest, StayWhenTheUserCancels) {
  for (const char* const path :
       {"/Host/Plug-Ins/Old.plugin", "/Host/Plug-Ins/a/Old.plugin", "/Host/Plug-Ins/Layer.plugin"}) {
    writeFile(on(path), "");
  }
  machine_.authorizations.statusOfTool["/bin/rm"] = -60006;
  unInstall();
  EXPECT_TRUE(controller_.authDenied());
  EXPECT_EQ(removals().size(), 1U) << "nothing after the refusal";
  EXPECT_EQ(log_.lines, Paths{});
  EXPECT_EQ(namesIn(on("/Host/Plug-Ins")), "Layer.plugin Old.plugin a");
}

}  // namespace
