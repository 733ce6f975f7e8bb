#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Exception.h"
#include "support/TestMachine.h"

namespace {

using std::errc;

class FileSystemTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path on(const std::string& path) const { return machine_.onVolume(path); }

  TestMachine machine_;
  FileSystem& files_ = machine_.files;
};

TEST_F(FileSystemTest, TellsWhatIsThere) {
  writeFile(on("/a/file"), "12345");
  fs::create_symlink("/a/file", on("/link"));
  fs::create_symlink("/nowhere", on("/dangling"));
  ::mkfifo(on("/pipe").c_str(), 0600);

  EXPECT_TRUE(files_.exists("/link"));
  EXPECT_FALSE(files_.exists("/dangling"));
  EXPECT_TRUE(files_.isTaken("/dangling"));
  EXPECT_FALSE(files_.isTaken("/a/none"));
  EXPECT_EQ(files_.attributesOfItem("/link")->type, ItemType::symbolicLink);
  EXPECT_EQ(files_.attributesOfItem("/a/file")->size, 5U);
  EXPECT_EQ(files_.attributesOfItem("/pipe")->type, ItemType::other);

  EXPECT_EQ(*files_.readFile("/link", 100), "12345");
  EXPECT_EQ(*files_.readFile("/a/file", 3), "123");
  EXPECT_TRUE(files_.readFile("/a", 10).error().is(errc::is_a_directory));
  EXPECT_FALSE(files_.readFile("/pipe", 10)) << "and does not wait for a writer";
  EXPECT_TRUE(files_.readFile("/dangling", 10).error().is(errc::no_such_file_or_directory));
}

TEST_F(FileSystemTest, ListsAndWalksInOrder) {
  for (const char* const file : {"/p/b.txt", "/p/.hidden/x", "/p/a/2", "/p/a/1", "/p/A.app/Contents/x", "/p/c.PlugIn/x",
                                 "/p/Own.kind/Contents/Info.plist", "/p/Version 3.1/x"}) {
    writeFile(on(file), "");
  }
  fs::create_directory_symlink("/p/a", on("/p/to a"));
  EXPECT_EQ(*files_.contentsOfDirectory("/p"), (std::vector<std::string>{".hidden", "A.app", "Own.kind", "Version 3.1",
                                                                         "a", "b.txt", "c.PlugIn", "to a"}));
  EXPECT_TRUE(files_.contentsOfDirectory("/p/b.txt").error().is(errc::not_a_directory));

  std::string walked;
  files_.walk("/p", [&](const WalkedItem& item) { walked += item.path.substr(3) + (item.isPackage ? "! " : " "); });
  EXPECT_EQ(walked, "A.app! Own.kind! Version 3.1 Version 3.1/x a a/1 a/2 b.txt c.PlugIn! to a ");
  files_.walk("/none", [](const WalkedItem&) { FAIL(); });
}

TEST_F(FileSystemTest, MakesFilesWholeOrNotAtAll) {
  fs::create_symlink("/elsewhere", on("/file"));
  EXPECT_TRUE(files_.createFile("/file", "content", 0640));
  EXPECT_EQ(readFile(on("/file")), "content");
  EXPECT_EQ(modeOf(on("/file")), "640");
  EXPECT_FALSE(fs::exists(on("/elsewhere"))) << "the link was replaced and not written through";

  writeFile(on("/folder/kept"), "");
  EXPECT_FALSE(files_.createFile("/folder", "content", 0644));
  EXPECT_FALSE(files_.createFile("/none/file", "content", 0644));
  EXPECT_TRUE(fs::exists(on("/folder/kept")));
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users file folder") << "nothing hidden is left behind";

  auto writing = files_.openForWriting("/file");
  ASSERT_TRUE(writing);
  (*writing)->writeData("CON");
  EXPECT_EQ(readFile(on("/file")), "CONtent");
  EXPECT_FALSE(files_.openForWriting("/folder"));
  EXPECT_FALSE(files_.openForWriting("/none"));
}

TEST_F(FileSystemTest, MakesFoldersWithTheMissingOnesAbove) {
  EXPECT_TRUE(files_.createDirectory("/one/two/three", 0775));
  EXPECT_EQ(modeOf(on("/one/two/three")), "775");
  EXPECT_EQ(modeOf(on("/one/two")), "755");
  EXPECT_TRUE(files_.createDirectory("/one", 0700));
  EXPECT_EQ(modeOf(on("/one")), "755") << "what was there stays as it is";

  fs::create_directory_symlink("/nowhere", on("/dangling"));
  writeFile(on("/file"), "");
  EXPECT_FALSE(files_.createDirectory("/file/below", 0775));
  EXPECT_FALSE(files_.createDirectory("/file", 0775));
  EXPECT_FALSE(files_.createDirectory("/dangling", 0775));
  EXPECT_FALSE(files_.createDirectory("/dangling/below", 0775)) << "the disk that it leads to may not be there today";
  fs::create_directory_symlink("/one", on("/valid"));
  EXPECT_TRUE(files_.createDirectory("/valid", 0775));
  EXPECT_TRUE(files_.createDirectory("/valid/below", 0775));
  EXPECT_TRUE(fs::exists(on("/one/below")));
}

TEST_F(FileSystemTest, RemovesLinksAndNotWhatTheyLeadTo) {
  writeFile(on("/kept/file"), "");
  writeFile(on("/gone/deep/file"), "");
  fs::create_directory_symlink("/kept", on("/gone/deep/link"));
  EXPECT_TRUE(files_.removeItem("/gone"));
  EXPECT_FALSE(fs::exists(on("/gone")));
  EXPECT_TRUE(fs::exists(on("/kept/file")));
  EXPECT_FALSE(files_.removeItem("/gone"));
}

TEST_F(FileSystemTest, SetsAttributesOfTheItemItself) {
  writeFile(on("/file"), "");
  ::chmod(on("/file").c_str(), 0600);
  fs::create_symlink("/file", on("/link"));
  EXPECT_TRUE(files_.setAttributes("/link", {.owner = machine_.account().name, .permissions = 0777}));
  EXPECT_EQ(modeOf(on("/file")), "600");
  EXPECT_TRUE(files_.setAttributes("/file", {.permissions = 0775}));
  EXPECT_EQ(modeOf(on("/file")), "775");
  EXPECT_FALSE(files_.setAttributes("/file", {.owner = "no such user"}));
}

TEST_F(FileSystemTest, NeverChangesTheInstallersBundle) {
  writeFile(on("/file"), "");
  const std::string own = machine_.inBundle("Resources").string();
  const std::string before = namesIn(own);
  for (const Status& status :
       {files_.createFile(own + "/new", "", 0644), files_.createDirectory(own + "/new", 0755), files_.removeItem(own),
        files_.copyItem(own + "/en.lproj", own + "/new"), files_.replaceItem(own + "/en.lproj", own),
        files_.setAttributes(own, {.permissions = 0777})}) {
    ASSERT_FALSE(status);
    EXPECT_TRUE(status.error().is(errc::read_only_file_system)) << status.error().description();
  }
  EXPECT_EQ(namesIn(own), before);
}

TEST_F(FileSystemTest, CopiesOnlyToAFreeName) {
  writeFile(on("/source"), "new");
  writeFile(on("/target"), "old");
  fs::create_symlink("/nowhere", on("/dangling"));
  EXPECT_TRUE(files_.copyItem("/source", "/target").error().is(errc::file_exists));
  EXPECT_TRUE(files_.copyItem("/source", "/dangling").error().is(errc::file_exists));
  EXPECT_EQ(readFile(on("/target")), "old");
  EXPECT_TRUE(files_.copyItem("/none", "/x").error().is(errc::no_such_file_or_directory));
  EXPECT_TRUE(files_.copyItem("/source", "/none/x").error().is(errc::no_such_file_or_directory));
  EXPECT_TRUE(files_.copyItem("/source", "/fresh"));
  EXPECT_EQ(readFile(on("/fresh")), "new");
}

TEST_F(FileSystemTest, ReplacesOneKindOfItemByAnother) {
  writeFile(on("/folder/deep/old"), "old");
  writeFile(on("/file"), "file");
  fs::create_directory_symlink("/file", on("/link"));
  EXPECT_TRUE(files_.replaceItem("/file", "/folder"));
  EXPECT_EQ(readFile(on("/folder")), "file");
  writeFile(on("/other/new"), "new");
  EXPECT_TRUE(files_.replaceItem("/other", "/file"));
  EXPECT_EQ(readFile(on("/file/new")), "new");
  EXPECT_TRUE(files_.replaceItem("/link", "/other"));
  EXPECT_EQ(fs::read_symlink(on("/other")), "/file");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users file folder link other");
}

}  // namespace
