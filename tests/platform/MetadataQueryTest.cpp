#include <sys/stat.h>
#include <unistd.h>

#include "support/TestMachine.h"

namespace {

class MetadataQueryTest : public MachineTest {
 protected:
  /// Begins to look for a name below the folder.
  void start(const std::string& name, const Paths& folders = {"/Host"}) {
    const Value value(name);
    query_->setPredicate(Predicate::parse("(kMDItemFSName LIKE %@)", {&value, 1}));
    query_->setSearchScopes(folders);
    ASSERT_TRUE(query_->startQuery());
  }
  /// Runs the loop to the end of the search; how often it took.
  int gather() {
    int turns = 0;
    for (; query_->isGathering() && turns < 10'000; ++turns) platform_.runLoop.runBeforeDate(RunLoop::Clock::now());
    return turns;
  }
  [[nodiscard]] Paths results() const {
    Paths paths;
    for (std::size_t i = 0; i < query_->resultCount(); ++i) paths.push_back(query_->valueOfAttribute(kMDItemPath, i));
    return paths;
  }
  Paths search(const std::string& name, const Paths& folders = {"/Host"}) {
    start(name, folders);
    gather();
    return results();
  }

  std::unique_ptr<MetadataQuery> query_ = platform_.metadataQueries.makeQuery();
};

TEST_F(MetadataQueryTest, FindsANameAtEveryDepth) {
  for (const char* const file : {"/Host/x", "/Host/b/x", "/Host/a/.hidden/x", "/Host/A.app/Contents/x/x", "/Host/X",
                                 "/Host/x2", "/Host/c/x y", "/x", "/Elsewhere/x"}) {
    if (!fs::exists(on(file))) writeFile(on(file), "");
  }
  fs::create_symlink("nowhere", on("/Host/c/x"));
  fs::create_directory_symlink("/Elsewhere", on("/Host/d"));
  fs::create_directory_symlink(".", on("/Host/loop"));
  fs::create_directory_symlink("/Host", on("/Link"));
  const Paths found = {
      "/Host/A.app/Contents/x", "/Host/A.app/Contents/x/x", "/Host/a/.hidden/x", "/Host/b/x", "/Host/c/x", "/Host/x"};
  EXPECT_EQ(search("x"), found);
  EXPECT_EQ(query_->valueOfAttribute(kMDItemFSName, 1) + query_->valueOfAttribute("kMDItemOther", 1), "x");
  EXPECT_EQ(search("x", {"//Link/b/"}), Paths{"/Link/b/x"}) << "a search may begin at a link";
  EXPECT_EQ(search("x", {"/none", "/x", "", "/Host/b", "/Elsewhere"}), (Paths{"/Elsewhere/x", "/Host/b/x"}));
  EXPECT_EQ(search("x?", {"/Host"}), Paths{"/Host/x2"});
  EXPECT_EQ(search("?*y", {"/Host"}), Paths{"/Host/c/x y"});
  EXPECT_EQ(search("x' OR kMDItemFSName LIKE '*"), Paths{}) << "a name is a value, whatever it holds";
  EXPECT_EQ(search("x", {on("/Elsewhere")}), Paths{}) << "not outside the volume";
}

TEST_F(MetadataQueryTest, GathersInManyTurns) {
  for (int i = 0; i < 2500; ++i) writeFile(on("/Host/" + std::to_string(i % 3) + "/" + std::to_string(i)), "");
  EXPECT_FALSE(query_->startQuery()) << "nothing to look for";
  EXPECT_FALSE(query_->isGathering());
  start("*99*");
  EXPECT_EQ(query_->resultCount(), 0U) << "nothing is done before the loop runs";
  EXPECT_GE(gather(), 2);
  const std::size_t all = query_->resultCount();
  EXPECT_EQ(all, 25U + 20 - 2) << "numbers below 2500 with two nines in a row";
  const Paths paths = results();
  EXPECT_TRUE(std::ranges::is_sorted(paths));

  start("*99*");
  platform_.runLoop.runBeforeDate(RunLoop::Clock::now());
  query_->stopQuery();
  EXPECT_TRUE(!query_->isGathering() && query_->resultCount() < all);
  EXPECT_FALSE(platform_.runLoop.runBeforeDate(RunLoop::Clock::now())) << "no work is left in the loop";
}

TEST_F(MetadataQueryTest, SurvivesFoldersThatGoAway) {
  writeFile(on("/Elsewhere/x"), "");
  for (int i = 0; i < 2100; ++i) writeFile(on("/Host/" + std::to_string(i % 5) + "/a/b/" + std::to_string(i)), "");
  for (int i = 0; i < 5; ++i) writeFile(on("/Host/" + std::to_string(i) + "/a/b/c/x"), "");
  start("x");
  platform_.runLoop.runBeforeDate(RunLoop::Clock::now());
  // Whatever the walk has open, three of the five are gone, and links to another place stand for two of these.
  for (const char* const gone : {"/Host/0", "/Host/2", "/Host/4"}) fs::remove_all(on(gone));
  for (const char* const link : {"/Host/0", "/Host/2"}) fs::create_directory_symlink("/Elsewhere", on(link));
  gather();
  const Paths found = results();
  for (const char* const kept : {"/Host/1/a/b/c/x", "/Host/3/a/b/c/x"}) {
    EXPECT_EQ(std::ranges::count(found, kept), 1) << kept;
  }
  EXPECT_EQ(std::ranges::count(found, "/Host/0/x") + std::ranges::count(found, "/Host/2/x"), 0);
}

TEST_F(MetadataQueryTest, PassesOverWhatCannotBeRead) {
  for (const char* const file : {"/Host/closed/x", "/Host/open/x"}) writeFile(on(file), "");
  ::chmod(on("").parent_path().c_str(), 0755);
  ::chmod(on("/Host/closed").c_str(), 0);
  const bool isRoot = ::geteuid() == 0;
  ASSERT_TRUE(!isRoot || ::seteuid(65534) == 0);
  const Paths found = search("x");
  ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
  EXPECT_EQ(found, Paths{"/Host/open/x"});
  ::chmod(on("/Host/closed").c_str(), 0755);
}

}  // namespace
