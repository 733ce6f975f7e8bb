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
    fs::create_symlink("/Library", root_ / "absolute");
    fs::create_symlink("Library/Real", root_ / "relative");
    fs::create_symlink("../../../../.." + outside_.string(), root_ / "climbing");
    fs::create_symlink(outside_.string(), root_ / "escaping");
    fs::create_symlink("/nowhere/at/all", root_ / "dangling");
    fs::create_symlink("/loop", root_ / "loop");
  }

  [[nodiscard]] std::string real(const std::string& path, LastLink lastLink = LastLink::follow) const {
    const auto found = volume_.realPath(path, lastLink, Purpose::look);
    if (!found) return found.error().description();
    return found->starts_with(root_.string()) ? found->substr(root_.string().size()) : *found;
  }

  TemporaryFolder folder_;
  fs::path root_ = folder_.path() / "volume";
  fs::path outside_ = folder_.path() / "outside";
  fs::path bundle_ = root_ / "Downloads/Installer.app";
  Volume volume_{root_.string(), bundle_.string()};
};

TEST_F(VolumeTest, FollowsLinksInsideTheVolume) {
  EXPECT_EQ(real("/absolute/Real/x"), "/Library/Real/x");
  EXPECT_EQ(real("/relative/../Real"), "/Library/Real");
  EXPECT_EQ(real("/absolute"), "/Library");
  EXPECT_EQ(real("/absolute", LastLink::keep), "/absolute");
  EXPECT_EQ(real("//Library///./Real/"), "/Library/Real");
  EXPECT_EQ(real("/"), "");
}

TEST_F(VolumeTest, NeverLeadsOut) {
  EXPECT_EQ(real("/../../../secret"), "/secret");
  EXPECT_EQ(real("/escaping/secret"), outside_.string() + "/secret") << "as a path of the volume";
  for (const char* const path : {"/escaping/secret", "/climbing/secret", "/Library/../../outside/secret"}) {
    EXPECT_FALSE(volume_.find(path, LastLink::follow, Purpose::look)) << path;
    EXPECT_TRUE(volume_.realPath(path, LastLink::follow, Purpose::look)->starts_with(root_.string())) << path;
  }
  EXPECT_TRUE(volume_.find("/climbing/../../../../../../../secret", LastLink::follow, Purpose::look) ||
              real("/climbing/../../../../../../../secret") == "/secret");
}

TEST_F(VolumeTest, NamesWhatDoesNotExist) {
  EXPECT_EQ(real("/Library/New/Folder"), "/Library/New/Folder");
  EXPECT_EQ(real("/Library/New/../Real/x"), "/Library/Real/x");
  EXPECT_EQ(real("/dangling/x"), "/nowhere/at/all/x");
  EXPECT_EQ(real("/secret/x"), "/secret/x") << "below a file";
  EXPECT_TRUE(volume_.find("/Library/new", LastLink::follow, Purpose::look));
  EXPECT_TRUE(
      volume_.find("/New/new", LastLink::follow, Purpose::look).error().is(std::errc::no_such_file_or_directory));
  EXPECT_TRUE(volume_.find("/secret/x", LastLink::follow, Purpose::look).error().is(std::errc::not_a_directory));
}

TEST_F(VolumeTest, RefusesWhatIsNoPath) {
  for (const auto& path : {""s, "Library"s, "/Library\0/x"s, "/loop/x"s, "/loop"s}) {
    EXPECT_FALSE(volume_.realPath(path, LastLink::follow, Purpose::look)) << onOneLine(path);
    EXPECT_FALSE(volume_.find(path, LastLink::follow, Purpose::look)) << onOneLine(path);
  }
}

TEST_F(VolumeTest, LetsNobodyChangeTheBundle) {
  const std::string own = (bundle_ / "Contents/x").string();
  EXPECT_EQ(*volume_.realPath(own, LastLink::keep, Purpose::look), own);
  for (const std::string& path :
       {own, bundle_.string(), "/Downloads/Installer.app/Contents/x"s, "/absolute/../Downloads/Installer.app"s}) {
    EXPECT_TRUE(volume_.find(path, LastLink::keep, Purpose::change).error().is(std::errc::read_only_file_system))
        << path;
    EXPECT_FALSE(volume_.realPath(path, LastLink::keep, Purpose::change)) << path;
  }
  EXPECT_TRUE(volume_.find("/Downloads/Other.app", LastLink::keep, Purpose::change));
}

}  // namespace
