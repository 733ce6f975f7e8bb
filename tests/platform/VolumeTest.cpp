#include "foundation/Text.h"
#include "platform/posix/Volume.h"
#include "support/TestMachine.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;
using namespace std::string_literals;

/// A volume with links of every kind, and a folder beside it that nothing may reach.
class VolumeTest : public testing::Test {
 protected:
  VolumeTest() {
    fs::create_directories(root_ / "Library/Real");
    writeFile(outside_ / "secret", "outside");
    writeFile(root_ / "secret", "inside");
    fs::create_directories(bundle_ / "Contents");
    fs::create_symlink("/Library", root_ / "Library/absolute");
    fs::create_symlink("Library/Real", root_ / "relative");
    fs::create_symlink("../../../../.." + outside_.string(), root_ / "climbing");
    fs::create_symlink(outside_.string(), root_ / "Library/escaping");
    fs::create_symlink("/nowhere/at/all", root_ / "dangling");
    fs::create_symlink("/loop", root_ / "loop");
  }

  [[nodiscard]] auto find(const std::string& path) const { return volume_.find(path, LastLink::follow, Purpose::look); }

  TemporaryFolder folder_;
  fs::path root_ = folder_.path() / "volume";
  fs::path outside_ = folder_.path() / "outside";
  fs::path bundle_ = root_ / "Downloads/Installer.app";
  Volume volume_{root_.string(), bundle_.string()};
};

TEST_F(VolumeTest, FollowsLinksAndNeverLeadsOut) {
  const std::pair<std::string, std::string> cases[] = {
      {"/Library/absolute/Real/x", "/Library/Real/x"},
      {"/relative/../Real", "/Library/Real"},
      {"//Library///./Real/", "/Library/Real"},
      {"/", ""},
      {"/dangling/x", "/nowhere/at/all/x"},
      {"/../../../secret", "/secret"},
      {"/Library/../../outside/secret", "/outside/secret"},
      {"/climbing/secret", outside_.string() + "/secret"},  // on the volume
      {"/Library/escaping/secret", outside_.string() + "/secret"},
  };
  for (const auto& [path, real] : cases) {
    EXPECT_EQ(*volume_.realPath(path, LastLink::follow, Purpose::look), root_.string() + real) << path;
  }
  EXPECT_EQ(*volume_.realPath("/Library/absolute", LastLink::keep, Purpose::look), root_ / "Library/absolute");
  EXPECT_TRUE(find("/Library/new"));
  EXPECT_TRUE(find("/New/new").error().is(std::errc::no_such_file_or_directory));
  EXPECT_TRUE(find("/secret/x").error().is(std::errc::not_a_directory));
  for (const auto& path : {""s, "Library"s, "/Library\0/x"s, "/loop/x"s, "/loop"s, "/Library/escaping/secret"s,
                           "/climbing/secret"s, "/Library/../../outside/secret"s}) {
    EXPECT_FALSE(find(path)) << onOneLine(path);
  }
}

TEST_F(VolumeTest, LetsNobodyChangeTheBundle) {
  const std::string own = (bundle_ / "Contents/x").string();
  EXPECT_EQ(*volume_.realPath(own, LastLink::keep, Purpose::look), own);
  for (const std::string& path :
       {own, bundle_.string(), "/Downloads/Installer.app/Contents/x"s, "/relative/../../Downloads/Installer.app"s}) {
    const auto found = volume_.find(path, LastLink::keep, Purpose::change);
    EXPECT_TRUE(found.error().is(std::errc::read_only_file_system)) << path;
  }
  EXPECT_TRUE(volume_.find("/Downloads/Other.app", LastLink::keep, Purpose::change));
}

}  // namespace
