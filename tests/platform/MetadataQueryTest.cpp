#include <algorithm>

#include "support/TestMachine.h"

namespace {

class MetadataQueryTest : public MachineTest {
 protected:
  /// Begins to look for a name below the folders.
  void start(const std::string& name, const Paths& folders = {"/Host"}) {
    const Value value(name);
    query_->setPredicate(Predicate::parse("(kMDItemFSName LIKE %@)", {&value, 1}));
    query_->setSearchScopes(folders);
    ASSERT_TRUE(query_->startQuery());
  }
  void turn() { platform_.runLoop.runBeforeDate(RunLoop::Clock::now()); }
  /// Runs the loop to the end of the search.
  Paths gather() {
    for (int turns = 0; query_->isGathering() && turns < 10'000; ++turns) turn();
    Paths paths;
    for (std::size_t i = 0; i < query_->resultCount(); ++i) paths.push_back(query_->valueOfAttribute(kMDItemPath, i));
    return paths;
  }
  Paths search(const std::string& name, const Paths& folders = {"/Host"}) {
    start(name, folders);
    return gather();
  }

  std::unique_ptr<MetadataQuery> query_ = platform_.metadataQueries.makeQuery();
};

TEST_F(MetadataQueryTest, FindsANameAtEveryDepth) {
  for (const char* const file : {"/Host/x", "/Host/b/x", "/Host/a/.hidden/x", "/Host/A.app/Contents/x/x", "/Host/X",
                                 "/Host/x2", "/Elsewhere/x"}) {
    writeFile(on(file), "");
  }
  fs::create_symlink("nowhere", on("/Host/a/x"));
  fs::create_directory_symlink("/Elsewhere", on("/Host/d"));
  fs::create_directory_symlink(".", on("/Host/loop"));
  fs::create_directory_symlink("/Host", on("/Link"));
  EXPECT_EQ(search("x"), (Paths{"/Host/A.app/Contents/x", "/Host/A.app/Contents/x/x", "/Host/a/.hidden/x", "/Host/a/x",
                                "/Host/b/x", "/Host/x"}));
  EXPECT_EQ(search("x", {"//Link/b/"}), Paths{"/Link/b/x"}) << "a search may begin at a link";
  EXPECT_EQ(search("x", {"/none", "/Host/x", "", "/Host/b", "/Elsewhere"}), (Paths{"/Elsewhere/x", "/Host/b/x"}));
  EXPECT_EQ(search("x", {on("/Elsewhere")}), Paths{}) << "not outside the volume";
}

TEST_F(MetadataQueryTest, GathersInManyTurnsWhateverHappensMeanwhile) {
  EXPECT_FALSE(query_->startQuery()) << "nothing to look for";
  writeFile(on("/Elsewhere/x"), "");
  for (int i = 0; i < 2500; ++i) writeFile(on("/Host/" + std::to_string(i % 5) + "/a/b/" + std::to_string(i)), "");
  for (int i = 0; i < 5; ++i) writeFile(on("/Host/" + std::to_string(i) + "/a/b/c/x"), "");
  start("*99*");
  turn();
  EXPECT_TRUE(query_->isGathering());
  EXPECT_EQ(gather().size(), 25U + 20 - 2) << "numbers below 2500 with two nines in a row";

  start("*99*");
  turn();
  query_->stopQuery();
  EXPECT_FALSE(query_->isGathering());
  EXPECT_FALSE(platform_.runLoop.runBeforeDate(RunLoop::Clock::now())) << "no work is left in the loop";

  start("x");
  turn();
  // Whatever the walk has open, three of the five are gone, and links to another place stand for two of these.
  for (const char* const gone : {"/Host/0", "/Host/2", "/Host/4"}) fs::remove_all(on(gone));
  for (const char* const link : {"/Host/0", "/Host/2"}) fs::create_directory_symlink("/Elsewhere", on(link));
  const Paths found = gather();
  EXPECT_TRUE(std::ranges::includes(found, Paths{"/Host/1/a/b/c/x", "/Host/3/a/b/c/x"}));
  EXPECT_EQ(std::ranges::count(found, "/Host/0/x") + std::ranges::count(found, "/Host/2/x"), 0);
}

}  // namespace
