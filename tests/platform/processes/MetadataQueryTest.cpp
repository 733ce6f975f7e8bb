// SPDX-License-Identifier: Apache-2.0

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
  fs::create_directory_symlink("../Elsewhere", on("/Host/d"));
  fs::create_directory_symlink(".", on("/Host/loop"));
  fs::create_directory_symlink("/Host", on("/Link"));
  EXPECT_EQ(search("x"), (Paths{"/Host/A.app/Contents/x", "/Host/A.app/Contents/x/x", "/Host/a/.hidden/x", "/Host/a/x",
                                "/Host/b/x", "/Host/x"}));
  EXPECT_EQ(search("x", {"//Link/b/"}), Paths{"/Link/b/x"}) << "a search may begin at a link";
  EXPECT_EQ(search("x", {"/none", "/Host/x", "", "/Host/b", "/Elsewhere"}), (Paths{"/Elsewhere/x", "/Host/b/x"}));
  EXPECT_EQ(search("x", {on("/Elsewhere")}), Paths{}) << "not outside the volume";
}

TEST_F(MetadataQueryTest, GathersInManyTurnsWhileFoldersChange) {
  writeFile(on("/Elsewhere/x"), "");
  for (int i = 0; i < 4000; ++i) writeFile(on("/Host/" + std::to_string(i % 5) + "/a/b/" + std::to_string(i)), "");
  for (int i = 0; i < 5; ++i) writeFile(on("/Host/" + std::to_string(i) + "/a/b/c/x"), "");
  start("*99*");
  turn();
  EXPECT_TRUE(query_->isGathering());
  EXPECT_EQ(gather().size(), 40U + 40 - 4) << "numbers below 4000 with two nines in a row";

  start("*99*");
  turn();
  query_->stopQuery();
  EXPECT_FALSE(query_->isGathering());
  EXPECT_FALSE(platform_.runLoop.runBeforeDate(RunLoop::Clock::now())) << "no work is left in the loop";

  start("x");
  turn();
  // Some of the folders the walk has not seen yet; one stays, and links to another place stand for the others.
  for (const std::string gone : {"/Host/0", "/Host/1", "/Host/2", "/Host/3"}) {
    fs::remove_all(on(gone));
    fs::create_directory_symlink(on("/Elsewhere"), on(gone));
  }
  const Paths found = gather();
  EXPECT_EQ(std::ranges::count(found, "/Host/4/a/b/c/x"), 1);
  for (const std::string& path : found) EXPECT_TRUE(path.ends_with("/a/b/c/x")) << path;
}

}  // namespace
