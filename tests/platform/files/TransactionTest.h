// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>

#include "platform/files/StagedTransaction.h"
#include "platform/rights/HelperTransaction.h"
#include "support/HelperProcess.h"

using Items = std::vector<TransactionItem>;
using Numbers = std::vector<std::size_t>;

/// Notes what became of each item.
struct NotingObserver : PatientObserver {
  void willStage(std::size_t item) override { begun.push_back(item); }
  bool didStage(std::size_t item, const ItemResult& result) override {
    errors.push_back(result.status ? "" : result.status.error().reason());
    return item + 1 != stopAfter;
  }

  Numbers begun;
  Paths errors;
  std::size_t stopAfter = 0;
};

/// Both ways to carry out a transaction: by root in this process, and by the helper for a user.
class TransactionTest : public HelperTest, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    HelperTest::SetUp();
    if (IsSkipped()) return;
    for (const char* const folder : {"/Applications", "/Library", "/Library/Application Support"}) {
      setOwner(on(folder), 0, 0);
    }
    lock_ = *volume_.tryLock();
  }

  [[nodiscard]] std::unique_ptr<Transaction> begin() {
    auto begun = GetParam() == Way::byRoot
                     ? StagedTransaction::begin(volume_, elevation_, ownership_, CopyPool::Caller::helps)
                     : HelperTransaction::begin(connection_, lock_->get());
    if (begun) return std::move(*begun);
    ADD_FAILURE() << begun.error().description();
    return nullptr;
  }

  /// A bundle as payloads have them: many files, nested folders, links, a file that can be run.
  std::string makeSource(const std::string& name, int files = 50) {
    const fs::path contents = machine_.payload(name) / "Contents";
    for (int i = 0; i < files; ++i) {
      writeFile(contents / "Resources" / std::to_string(i % 7) / std::to_string(i), "content " + std::to_string(i));
    }
    writeFile(contents / "MacOS/program", std::string(100'000, 'p'));
    ::chmod((contents / "MacOS/program").c_str(), 0755);
    for (const char* const target : {"MacOS/program", "/etc/passwd", "nowhere", ".."}) {
      fs::create_symlink(target, contents / ("to " + fs::path(target).filename().string()));
    }
    fs::create_directories(contents / "empty");
    return machine_.payload(name);
  }
  std::string makeFile(const std::string& name, const std::string& content = "new") {
    writeFile(machine_.payload(name), content);
    return machine_.payload(name);
  }

  /// Kinds, times and contents of all that is in the folder.
  [[nodiscard]] std::string describe(const fs::path& folder) const {
    const fs::path listing = on("").parent_path() / "listing";
    const std::string command = "cd '" + folder.string() + "' && (find . -printf '%p %y %T@ %l\\n'; find . -type f " +
                                "-exec cksum {} +) | sort >" + listing.string();
    EXPECT_EQ(std::system(command.c_str()), 0);
    return readFile(listing);
  }
  void expectHandedOver(const std::string& path) const {
    for (const auto& entry : fs::recursive_directory_iterator(on(path))) {
      EXPECT_EQ(ownerOf(entry.path()), handedOver_) << entry.path();
      EXPECT_EQ(modeOf(entry.path()), entry.is_symlink() ? "777" : "775") << entry.path();
    }
    EXPECT_EQ(ownerOf(on(path)) + " " + modeOf(on(path)), handedOver_ + " 775");
  }

  /// Installs all of them; why each could not be staged or committed.
  Paths install(const Items& items) {
    const auto transaction = begin();
    NotingObserver noting;
    EXPECT_TRUE(transaction->stage(items, noting));
    EXPECT_TRUE(transaction->flush(noting));
    Numbers numbers;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (noting.errors[i].empty()) numbers.push_back(i);
    }
    const auto results = transaction->commit(numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (!results[i]) noting.errors[numbers[i]] = results[i].error().reason();
    }
    EXPECT_TRUE(transaction->finish(noting).empty());
    return noting.errors;
  }

  const Volume& volume_ = machine_.volume();
  const Ownership ownership_{nobody, *groupNumber("admin")};
  RootElevation elevation_{Places(volume_, "/Users/nobody", nobody)};
  std::shared_ptr<FileDescriptor> lock_;
};
