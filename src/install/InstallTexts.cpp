// SPDX-License-Identifier: Apache-2.0

#include "install/InstallTexts.h"

#include <algorithm>
#include <string_view>
#include <system_error>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/tasks/FileErrorReporting.h"
#include "payload/InstallerTexts.h"

namespace {

constexpr std::size_t shownProblems = 12;
constexpr double paragraph = 8;

std::string text(const Platform& platform, std::string_view key) {
  return platform.bundles.mainBundle().localizedString(key);
}

struct Reason {
  std::errc code;
  const char* key;
};

constexpr Reason reasons[] = {{std::errc::no_space_on_device, "reason_space"},
                              {std::errc::permission_denied, "reason_permission"},
                              {std::errc::operation_not_permitted, "reason_permission"},
                              {std::errc::read_only_file_system, "reason_read_only"},
                              {std::errc::no_such_file_or_directory, "reason_missing"},
                              {std::errc::not_a_directory, "reason_folder"},
                              {std::errc::is_a_directory, "reason_folder"},
                              {std::errc::file_exists, "reason_folder"},
                              {std::errc::io_error, "reason_disk"}};

/// Collects the paragraphs of an outcome.
class Paragraphs {
 public:
  explicit Paragraphs(const RichText& opening) : text_(opening) {}

  void add(std::string_view line, bool isBold = false, double spaceAfter = paragraph) {
    if (line.empty()) return;
    if (!text_.string().empty() && !text_.string().ends_with('\n')) text_.append("\n", lastAttributes());
    text_.append(line, {.bold = isBold, .spaceAfter = spaceAfter});
  }
  [[nodiscard]] const RichText& text() const { return text_; }

 private:
  [[nodiscard]] RichText::Attributes lastAttributes() const {
    return text_.runs().empty() ? RichText::Attributes() : text_.runs().back().attributes;
  }

  RichText text_;
};

bool hasFailedIn(const std::string& folder, const InstallReport& report) {
  return !folder.empty() && std::ranges::any_of(report.failures, [&](const ReportedProblem& problem) {
    return problem.path.starts_with(folder + "/");
  });
}

void addHosts(Paragraphs& paragraphs, const Platform& platform, const InstallOutcome& outcome) {
  for (std::size_t i = 0; i < outcome.hosts.size(); ++i) {
    const HostModel& host = *outcome.hosts[i];
    const std::string plugIns = joinPath({host.plugInPath()});
    if (hasFailedIn(plugIns, outcome.report)) continue;  // its items are among the failures
    const std::string folder = outcome.report.folderOfHost(i, plugIns);
    paragraphs.add(host.hostName(), /*isBold=*/true, /*spaceAfter=*/0);
    paragraphs.add(folder.empty() ? text(platform, "result_missing")
                                  : formatted(text(platform, "result_installed"), shownInText(platform, folder)));
  }
}

void addProblems(Paragraphs& paragraphs, const Platform& platform, std::string_view heading,
                 const std::vector<ReportedProblem>& problems) {
  if (problems.empty()) return;
  paragraphs.add(text(platform, heading), /*isBold=*/true, /*spaceAfter=*/0);
  for (std::size_t i = 0; i < std::min(problems.size(), shownProblems); ++i) {
    paragraphs.add(shownInText(platform, problems[i].path) + ": " + reasonText(platform, problems[i].reason),
                   /*isBold=*/false, 2);
  }
  if (problems.size() > shownProblems) paragraphs.add("… +" + std::to_string(problems.size() - shownProblems));
}

void addFailure(Paragraphs& paragraphs, const Platform& platform, const InstallOutcome& outcome) {
  const InstallReport& report = outcome.report;
  if (outcome.isDenied) paragraphs.add(text(platform, "quiet_denied"));
  if (report.shortage) paragraphs.add(shortageText(platform, *report.shortage));
  const bool isUnexplained =
      !outcome.isDenied && !report.shortage && report.failures.empty() && report.unreadable.empty();
  if (isUnexplained && !report.interruption) paragraphs.add(text(platform, "auth_error"));
  if (report.installedPaths.empty()) {
    paragraphs.add(text(platform, "failure_unchanged"));
  } else {
    paragraphs.add(formatted(text(platform, "quiet_items"), std::to_string(report.placeCount())) + "\n" +
                   text(platform, "failure_kept"));
  }
  paragraphs.add(text(platform, "failure_next"));
  addProblems(paragraphs, platform, "failure_items", report.failures);
  addProblems(paragraphs, platform, "failure_unreadable", report.unreadable);
}

const PlannedItem* firstBundle(const PlannedGroup& group) {
  for (const PlannedBatch& batch : group.batches) {
    for (const PlannedItem& item : batch.items) {
      if (item.kind == ItemKind::bundle && item.details != nullptr) return &item;
    }
  }
  return nullptr;
}

}  // namespace

std::string sizeText(const Platform& platform, std::uint64_t bytes) {
  constexpr std::uint64_t megabyte = 1'000'000;
  constexpr std::uint64_t gigabyte = 1'000'000'000;
  if (bytes >= 10 * gigabyte) {
    return formatted(platform.bundles.mainBundle().localizedString("size_gigabytes", "%@ GB", "Localizable"),
                     std::to_string(bytes / gigabyte));
  }
  return formatted(platform.bundles.mainBundle().localizedString("size_megabytes", "%@ MB", "Localizable"),
                   std::to_string((bytes + megabyte - 1) / megabyte));
}

std::string reasonText(const Platform& platform, const Error& reason) {
  for (const auto& [code, key] : reasons) {
    const std::string words = reason.is(code) ? text(platform, key) : std::string();
    if (!words.empty()) return words;
  }
  if (reason.domain != Error::posixDomain) return reason.reason();
  return formatted(text(platform, "reason_other"), std::to_string(reason.code));
}

std::string planText(const Platform& platform, const InstallPlan& plan) {
  if (plan.hosts().empty()) return text(platform, "summary_no_hosts");
  std::uint64_t required = 0;
  std::uint64_t available = 0;
  for (const SpaceNeed& need : plan.space()) {
    required += need.required;
    available += need.available;
  }
  if (plan.space().empty()) return {};
  return formatted(text(platform, "summary_space"), sizeText(platform, required), sizeText(platform, available));
}

std::string versionText(const Platform& platform, const InstallPlan& plan, std::size_t host) {
  for (const PlannedGroup& group : plan.groups()) {
    const PlannedItem* const item = group.host == host ? firstBundle(group) : nullptr;
    if (item == nullptr) continue;
    const ItemDetails& details = *item->details;
    if (item->keptBecause == KeptBecause::obstacle && details.obstacle) return reasonText(platform, *details.obstacle);
    if (details.presentVersion.empty() || details.presentVersion == details.offeredVersion) return {};
    return formatted(text(platform, "summary_replaced"), details.presentVersion, details.offeredVersion);
  }
  return {};
}

std::string progressText(const Platform& platform, const InstallProgress& progress,
                         std::optional<std::chrono::seconds> remaining) {
  using Phase = InstallProgress::Phase;
  if (progress.phase == Phase::flushing || progress.phase == Phase::cleaningUp) {
    return text(platform, "progress_flushing");
  }
  if (progress.planned.bytes == 0) return {};
  const std::uint64_t copied = std::min<std::uint64_t>(progress.copied.bytes, progress.planned.bytes);
  const std::string amount = formatted(text(platform, "progress_amount"), sizeText(platform, copied),
                                       sizeText(platform, progress.planned.bytes));
  if (!remaining) return amount;
  const auto minutes = (remaining->count() + 59) / 60;
  const std::string time = minutes > 1 ? formatted(text(platform, "progress_minutes"), std::to_string(minutes))
                                       : text(platform, "progress_seconds");
  return amount + " – " + time;
}

RichText outcomeText(const Platform& platform, const InstallOutcome& outcome, const RichText& opening) {
  const bool servedNone = outcome.isSuccessful && outcome.hosts.empty();
  Paragraphs paragraphs(outcome.isSuccessful && !servedNone ? opening : RichText());
  if (!outcome.isSuccessful) paragraphs.add(opening.string(), /*isBold=*/true);
  if (servedNone) {
    const bool hasInstalled = !outcome.report.installedPaths.empty();
    paragraphs.add(text(platform, hasInstalled ? "result_none" : "result_nothing"), /*isBold=*/true);
    if (hasInstalled) {
      paragraphs.add(formatted(text(platform, "quiet_items"), std::to_string(outcome.report.placeCount())));
    }
  }
  if (!outcome.isSuccessful) addFailure(paragraphs, platform, outcome);
  if (outcome.isSuccessful || !outcome.report.installedPaths.empty()) addHosts(paragraphs, platform, outcome);
  return paragraphs.text();
}
