// SPDX-License-Identifier: Apache-2.0

#include <set>
#include <string>

#include "foundation/Text.h"
#include "kit/CheckBundle.h"
#include "kit/FileNames.h"
#include "kit/MadeBundle.h"
#include "platform/SystemPlatform.h"

namespace {

using Ids = std::set<std::string, std::less<>>;

/// All mistakes, those of resources first.
std::vector<Mistake> allMistakes() {
  std::vector<Mistake> all = resourceMistakes();
  all.insert(all.end(), payloadMistakes().begin(), payloadMistakes().end());
  return all;
}

std::string shown(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += finding.id + " " + shownPlace(finding.place) + ": " + finding.what + "\n";
  }
  return text;
}

TEST(CheckTest, FindsNothingInACorrectBundle) { EXPECT_EQ(shown(MadeBundle().findings()), ""); }

void expectFound(const std::vector<Mistake>& mistakes) {
  for (const Mistake& mistake : mistakes) {
    SCOPED_TRACE(std::string(mistake.id) + " " + mistake.place);
    const MadeBundle bundle;
    mistake.make(bundle);
    const std::vector<Finding> findings = bundle.findings();
    EXPECT_EQ(findings.size(), 1U) << shown(findings);
    if (findings.empty()) continue;
    EXPECT_EQ(findings[0].id, mistake.id);
    EXPECT_EQ(shownPlace(findings[0].place), mistake.place);
    EXPECT_NE(findings[0].fix.find(mistake.fix), std::string::npos) << findings[0].fix;
  }
}

TEST(CheckTest, FindsEachMistakeInResourcesAndNothingElse) { expectFound(resourceMistakes()); }
TEST(CheckTest, FindsEachMistakeInThePayloadAndNothingElse) { expectFound(payloadMistakes()); }

/// What looks like a mistake and is none.
TEST(CheckTest, LeavesDeliberateChoicesAlone) {
  const MadeBundle bundle;
  for (const char* const language : {"de", "en"}) bundle.remove(std::string(language) + ".lproj/license.txt");
  bundle.write("license.txt", "One licence for all languages");
  makeBundle(bundle.payload("PHOTOSHOP_PLUGINS/Tools/Helper.app"),
             {{"CFBundleExecutable", "run"}, {"CFBundleVersion", "3.1.2"}});
  bundle.write("files/PHOTOSHOP_PLUGINS/Tools/Helper.app/Contents/MacOS/run", "#!/bin/sh\n");
  makeBundle(bundle.payload("PHOTOSHOP_PLUGINS/Tools/Helper.app/Contents/PlugIns/Other.bundle"),
             {{"CFBundleVersion", "1.4b"}});
  bundle.write("files/HD/Applications/Studio.app/Contents/Resources/.hidden", "");
  bundle.write("files/HD/Library/Application Support/Corvane/Dunmore 3/Icon\r", "");
  bundle.edit("files/HD/Applications/Studio.app/Contents/Info.plist", "3.1.2", "7.0");
  bundle.write("de.lproj/installer.strings", "copyright = '2026';");
  bundle.edit("en.lproj/installer.strings", "\"remove_earlier\" = \"no\"", "\"remove_earlier\" = \"yes\"");
  bundle.write("../SharedSupport/PlugIn/Dunmore", "");
  bundle.edit("MainWindow.ui", "name_steps", "own_label");
  for (const std::string table : {"de.lproj/Localizable.strings", "en.lproj/Localizable.strings"}) {
    bundle.write(table, bundle.read(table) + "own_label = Hello;");
  }
  EXPECT_EQ(shown(bundle.findings()), "");
}

TEST(CheckTest, WantsTextsInTheLanguagesThatAreOffered) {
  const MadeBundle bundle;
  bundle.edit("en.lproj/installer.strings", "\"languages\" = \"\"", "\"languages\" = \"de\"");
  for (const char* const text : {"license.txt", "proceed.rtf"}) bundle.remove(std::string("en.lproj/") + text);
  for (const char* const language : {"de", "en"}) bundle.remove(std::string(language) + ".lproj/aperture.rtf");
  EXPECT_EQ(shown(bundle.findings()), "");
}

TEST(CheckTest, TellsTheMostSeriousOnesFirst) {
  const MadeBundle bundle;
  bundle.write("files/PHOTOSHOP/.hidden", "");
  bundle.remove("en.lproj/license.txt");
  bundle.write("checkmark@2x.png", "");
  bundle.remove("files/PHOTOSHOP_PLUGINS/Dunmore.plugin/Contents/MacOS/Dunmore");
  std::string severities;
  for (const Finding& finding : bundle.findings()) severities += nameOf(finding.severity).front();
  EXPECT_EQ(severities, "eeww") << shown(bundle.findings());
}

/// Rows of the documentation: | `id` | severity | what | [test](file) |
TEST(CheckTest, DocumentsEveryFindingWithItsTest) {
  Ids tried;
  for (const Mistake& mistake : allMistakes()) tried.emplace(mistake.id);
  Ids documented;
  const fs::path docs = DOCS_FOLDER;
  const std::string page = readFile(docs / "findings.md");
  for (const std::string_view line : split(page, '\n')) {
    if (!line.starts_with("| `")) continue;
    const auto cells = split(line, '|');
    ASSERT_EQ(cells.size(), 6U) << line;
    const std::string id(trimmed(cells[1]).substr(1, trimmed(cells[1]).size() - 2));
    documented.insert(id);
    const auto entry = std::ranges::find(catalogue(), id, &CatalogueEntry::id);
    ASSERT_NE(entry, catalogue().end()) << id;
    EXPECT_EQ(trimmed(cells[2]), nameOf(entry->severity)) << id;
    const std::string_view link = trimmed(cells[4]);
    const std::string file(link.substr(link.find('(') + 1, link.find(')') - link.find('(') - 1));
    EXPECT_NE(readFile(docs / file).find("{\"" + id + "\""), std::string::npos) << file << " does not try " << id;
  }
  Ids known;
  for (const CatalogueEntry& entry : catalogue()) known.emplace(entry.id);
  EXPECT_EQ(tried, known);
  EXPECT_EQ(documented, known);
}

TEST(FileNamesTest, TakesForOneNameWhatAVolumeTakesForOne) {
  EXPECT_EQ(composedName("Gru\u0308n e\u0302\u0301 \u1112\u1161\u11AB \u304B\u3099"), "Gr\u00FCn \u1EBF \uD55C \u304C");
  EXPECT_EQ(composedName("q\u0308 \u0301"), "q\u0308 \u0301") << "there is no such character";
  EXPECT_EQ(nameOnVolume("GRU\u0308N \u0416\u0391 \u0150"), nameOnVolume("gr\u00FCn \u0436\u03B1 o\u030B"));
  EXPECT_NE(nameOnVolume("a"), nameOnVolume("\u00E0"));
  EXPECT_EQ(nameOnVolume("\xFF"
                         "A"),
            "\xFF"
            "A");
}

}  // namespace
