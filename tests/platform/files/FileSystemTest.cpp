// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>

#include "platform/files/FileCopy.h"
#include "platform/files/TemporaryFile.h"
#include "support/TestMachine.h"

namespace {

using std::errc;
using namespace std::string_literals;
using FileSystemTest = MachineTest;

TEST_F(FileSystemTest, ReportsExistingItems) {
  writeFile(on("/a/file"), "12345");
  fs::create_symlink("/a/file", on("/link"));
  fs::create_symlink("/nowhere", on("/dangling"));
  ::mkfifo(on("/pipe").c_str(), 0600);

  EXPECT_TRUE(files_.exists("/link"));
  EXPECT_TRUE(files_.isTaken("/dangling"));
  EXPECT_FALSE(files_.exists("/dangling"));
  EXPECT_FALSE(files_.isTaken("/a/none"));
  EXPECT_EQ(files_.attributesOfItem("/link")->type, ItemType::symbolicLink);
  EXPECT_EQ(*files_.readFile("/link", 3), "123");
  EXPECT_TRUE(files_.readFile("/a", 10).error().is(errc::is_a_directory));
  EXPECT_FALSE(files_.readFile("/pipe", 10)) << "and does not wait for a writer";
}

TEST_F(FileSystemTest, ListsAndWalksInOrder) {
  for (const char* const file : {"/p/b.txt", "/p/.hidden/x", "/p/a/2", "/p/a/1", "/p/A.app/Contents/x", "/p/c.PlugIn/x",
                                 "/p/Own.kind/Contents/Info.plist", "/p/Version 3.1/x"}) {
    writeFile(on(file), "");
  }
  fs::create_directory_symlink("/p/a", on("/p/to a"));
  EXPECT_EQ(*files_.contentsOfDirectory("/p"),
            (Paths{".hidden", "A.app", "Own.kind", "Version 3.1", "a", "b.txt", "c.PlugIn", "to a"}));
  std::string hidden;
  Paths unreadable;
  const auto note = [&](const Error& error) { unreadable.push_back(error.description()); };
  files_.walk("/p/none", {[](const WalkedItem&) {}, {}, note});
  EXPECT_EQ(unreadable, Paths{"/p/none: No such file or directory"});
  files_.walk("/p", {[](const WalkedItem&) {}, [&](const std::string& path) { hidden += path; }, note});
  EXPECT_EQ(hidden, "/p/.hidden");
  std::string walked;
  files_.walk("/p", [&](const WalkedItem& item) { walked += item.path.substr(3) + (item.isPackage ? "! " : " "); });
  EXPECT_EQ(walked, "A.app! Own.kind! Version 3.1 Version 3.1/x a a/1 a/2 b.txt c.PlugIn! to a ");
}

TEST_F(FileSystemTest, WritesFilesAtomically) {
  fs::create_symlink("/elsewhere", on("/file"));
  EXPECT_TRUE(files_.createFile("/file", "content", 0640));
  EXPECT_EQ(readFile(on("/file")), "content");
  EXPECT_EQ(modeOf(on("/file")), "640");
  EXPECT_FALSE(fs::exists(on("/elsewhere"))) << "the link was replaced and not written through";

  // Who reads the file while it is written anew goes on reading the old one.
  fs::create_hard_link(on("/file"), on("/before"));
  EXPECT_TRUE(files_.createFile("/file", "fresh", 0640));
  EXPECT_EQ(readFile(on("/before")), "content");
  (*files_.openForWriting("/file"))->writeData("FR");
  EXPECT_EQ(readFile(on("/file")), "FResh");

  writeFile(on("/folder/kept"), "");
  EXPECT_FALSE(files_.createFile("/folder", "content", 0644));
  EXPECT_FALSE(files_.createFile("/none/file", "content", 0644));
  EXPECT_TRUE(fs::exists(on("/folder/kept")));
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users before file folder") << "nothing hidden is left behind";
}

TEST_F(FileSystemTest, WritesThroughNoLinkUnderItsHiddenName) {
  const FileDescriptor folder(::open(on("/").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::string hidden;
  {
    const auto file = TemporaryFile::open(folder.get(), "name", "");
    ASSERT_TRUE(file);
    for (const auto& entry : fs::directory_iterator(on("/"))) {
      if (entry.is_regular_file()) hidden = entry.path().filename();
    }
  }
  writeFile(on("/Library/kept"), "kept");
  for (const char* const target : {"Library/made", "Library/kept"}) {
    fs::create_symlink(target, on("/" + hidden));
    EXPECT_TRUE(files_.createFile("/name", "content", 0600)) << target;
  }
  writeFile(on("/" + hidden), std::string(100, 'x'));
  EXPECT_TRUE(files_.createFile("/name", "content", 0600)) << "left by a killed process";
  EXPECT_EQ(readFile(on("/name")), "content");
  fs::create_hard_link(on("/Library/kept"), on("/" + hidden));
  EXPECT_TRUE(files_.createFile("/name", "content", 0600)) << "a second name";
  EXPECT_EQ(readFile(on("/Library/kept")), "kept");
  EXPECT_EQ(namesIn(on("/Library")), "Application Support kept");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users name");
}

TEST_F(FileSystemTest, CopiesFilesToFreeNamesOnly) {
  writeFile(on("/from/file"), "new");
  fs::create_symlink("file", on("/from/link"));
  writeFile(on("/to/file"), "taken");
  const FileDescriptor from(::open(on("/from").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const FileDescriptor to(::open(on("/to").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  CopyCount copied;
  EXPECT_EQ(copyFile(from.get(), "file", to.get(), {.mode = 0600}, copied).content, EEXIST);
  EXPECT_EQ(copyFile(from.get(), "link", to.get(), {.mode = 0600}, copied).content, ELOOP);
  EXPECT_EQ(readFile(on("/to/file")), "taken");
  EXPECT_EQ(copied.files, 0U);
}

TEST_F(FileSystemTest, LetsWritersOfOneFileTakeTurns) {
  const FileDescriptor folder(::open(on("/").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  auto first = TemporaryFile::open(folder.get(), "name", "");
  ASSERT_TRUE(first);
  EXPECT_TRUE(first->write("first, and longer"));
  auto second = std::async(std::launch::async, [&] { return files_.createFile("/name", "second", 0600); });
  EXPECT_EQ(second.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  EXPECT_TRUE(std::move(*first).putInPlace());
  EXPECT_TRUE(second.get());
  EXPECT_EQ(readFile(on("/name")), "second");
}

TEST_F(FileSystemTest, ClosesWhatItOpens) {
  const auto descriptors = [] { return std::distance(fs::directory_iterator("/dev/fd"), {}); };
  writeFile(on("/folder/inner/file"), "");
  fs::create_symlink("/folder", on("/link"));
  const auto before = descriptors();
  EXPECT_TRUE(files_.contentsOfDirectory("/link"));
  files_.walk("/folder", [](const WalkedItem&) {});
  EXPECT_TRUE(files_.readFile("/link/inner/file", 1));
  EXPECT_TRUE(files_.createFile("/folder/new", "", 0600));
  EXPECT_FALSE(files_.readFile("/none", 1));
  EXPECT_TRUE(files_.removeItem("/folder"));
  EXPECT_EQ(descriptors(), before);
}

TEST_F(FileSystemTest, ChangesLinksNotTheirTargets) {
  writeFile(on("/kept/file"), "");
  ::chmod(on("/kept/file").c_str(), 0600);
  fs::create_directories(on("/gone/deep"));
  fs::create_directory_symlink("/kept", on("/gone/deep/link"));
  fs::create_symlink("/kept/file", on("/gone/link"));
  EXPECT_TRUE(files_.setAttributes("/gone/link", {.owner = machine_.account().name, .permissions = 0777}));
  EXPECT_EQ(modeOf(on("/kept/file")), "600");
  EXPECT_TRUE(files_.removeItem("/gone"));
  EXPECT_FALSE(files_.removeItem("/gone"));
  EXPECT_EQ(namesIn(on("/kept")), "file");
  EXPECT_TRUE(files_.setAttributes("/kept/file", {.permissions = 0775}));
  EXPECT_EQ(modeOf(on("/kept/file")), "775");
  EXPECT_FALSE(files_.setAttributes("/kept/file", {.owner = "no such user"}));
}

TEST_F(FileSystemTest, GivesNobodyWhatIsRoots) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  const Volume volume(on("").string(), "");
  constexpr unsigned nobody = 65534;
  const PosixUser user({.id = nobody, .group = nobody, .name = "nobody", .home = "/"}, {"en"});
  PosixFileSystem files(volume, user, [](const std::string&) { return false; });
  const OwnershipAndMode wanted{.owner = "nobody", .permissions = 0775};
  writeFile(on("/secret"), "");
  ::chmod(on("/secret").c_str(), 0600);
  fs::create_hard_link(on("/secret"), on("/planted"));
  for (const char* const path : {"/secret", "/planted"}) {
    EXPECT_FALSE(files.setAttributes(path, wanted)) << path;
    EXPECT_EQ(modeOf(on(path)), "600") << path;
    EXPECT_EQ(files.attributesOfItem(path)->owner.user, 0U) << path;
  }
  EXPECT_TRUE(files.createDirectory("/made", 0755));
  EXPECT_TRUE(files.setAttributes("/made", wanted)) << "the user's own";
  EXPECT_EQ(modeOf(on("/made")), "775");
}

TEST_F(FileSystemTest, NeverLeavesTheVolume) {
  const fs::path outside = on("").parent_path() / "outside";
  writeFile(outside / "secret", "outside");
  writeFile(on("/secret"), "inside");
  writeFile(on("/Library/Real/x"), "x");
  const Texts links = {{"/Library/absolute", "/Library"},
                       {"/relative", "Library/Real"},
                       {"/climbing", "../../../../.." + outside.string()},
                       {"/escaping", outside.string()},
                       {"/loop", "/loop"}};
  for (const auto& [link, target] : links) fs::create_symlink(target, on(link));
  for (const char* const path : {"/Library/absolute/Real/x", "/relative/../Real/x", "//Library///New/.././Real/x"}) {
    EXPECT_EQ(files_.readFile(path, 10).valueOr(""), "x") << path;
  }
  EXPECT_EQ(files_.readFile("/../../../secret", 10).valueOr(""), "inside");
  for (const std::string& path : {"/climbing/secret"s, "/escaping/secret"s, "/Library/../../outside/secret"s, "secret"s,
                                  ""s, "/secret\0x"s, "/secret/x"s, "/loop/x"s}) {
    EXPECT_FALSE(files_.readFile(path, 10)) << path;
    EXPECT_FALSE(files_.createFile(path, "", 0644)) << path;
  }
  EXPECT_FALSE(files_.readFile("/loop", 10));
  EXPECT_EQ(readFile(outside / "secret"), "outside");
}

TEST_F(FileSystemTest, NeverChangesTheInstallersBundle) {
  const std::string bundle = on("/Downloads/Installer.app").string();
  writeFile(bundle + "/Contents/x", "");
  const Volume volume(on("").string(), bundle);
  const PosixUser user(machine_.account(), {"en"});
  PosixFileSystem files(volume, user, [](const std::string&) { return false; });
  for (const std::string& own :
       {bundle, bundle + "/Contents/x", "/Downloads/Installer.app/Contents"s, "/Library/../Downloads/Installer.app"s}) {
    for (const Status& status : {files.createFile(own, "", 0644), files.createDirectory(own + "/new", 0755),
                                 files.removeItem(own), files.setAttributes(own, {.permissions = 0777})}) {
      ASSERT_FALSE(status) << own;
      EXPECT_TRUE(status.error().is(errc::read_only_file_system)) << own;
    }
  }
  EXPECT_TRUE(files.createDirectory("/Downloads/Other.app", 0755));
}

}  // namespace
