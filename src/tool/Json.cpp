// SPDX-License-Identifier: Apache-2.0

#include "tool/Json.h"

#include <nlohmann/json.hpp>

#include "foundation/Path.h"
#include "tool/InstalledPlaces.h"

namespace {

using Json = nlohmann::ordered_json;

/// Grows when a reader of the former answers could misunderstand the new ones.
constexpr int formatVersion = 1;

std::string written(const Json& answer) {
  return answer.dump(2, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace) + "\n";
}

Json answerFor(const std::string& volume, const ToolTexts& texts) {
  return {{"version", formatVersion},
          {"product", texts.product()},
          {"productVersion", texts.version()},
          {"target", volume}};
}

const char* nameOf(ItemKind kind) {
  switch (kind) {
    case ItemKind::bundle: return "bundle";
    case ItemKind::folder: return "folder";
    case ItemKind::file: return "file";
    case ItemKind::other: break;
  }
  return "other";
}

const char* nameOf(Fate fate) {
  switch (fate) {
    case Fate::added: return "added";
    case Fate::replaced: return "replaced";
    case Fate::kept: break;
  }
  return "kept";
}

const char* nameOf(KeptBecause reason) {
  switch (reason) {
    case KeptBecause::nothing: break;
    case KeptBecause::presentIsNewer: return "presentIsNewer";
    case KeptBecause::neighbourIsNewer: return "neighbourIsNewer";
    case KeptBecause::obstacle: return "obstacle";
    case KeptBecause::earlierFailure: return "earlierFailure";
  }
  return "";
}

const char* nameOf(SkippedEntry::Reason reason) {
  switch (reason) {
    case SkippedEntry::Reason::hidden: return "hidden";
    case SkippedEntry::Reason::notPartOfProduct: return "notPartOfProduct";
    case SkippedEntry::Reason::lightroomOnly: return "lightroomOnly";
    case SkippedEntry::Reason::noFileOrFolder: break;
  }
  return "noFileOrFolder";
}

const char* nameOf(LoadingProblem::Kind kind) {
  switch (kind) {
    case LoadingProblem::Kind::architecture: return "architecture";
    case LoadingProblem::Kind::hostVersion: return "hostVersion";
    case LoadingProblem::Kind::olderCopy: break;
  }
  return "olderCopy";
}

const char* nameOf(ItemDifference::Kind kind) {
  using Kind = ItemDifference::Kind;
  switch (kind) {
    case Kind::missing: return "missing";
    case Kind::extra: return "extra";
    case Kind::type: return "type";
    case Kind::link: return "link";
    case Kind::size: return "size";
    case Kind::content: return "content";
    case Kind::mode: return "mode";
    case Kind::owner: return "owner";
    case Kind::attributes: return "attributes";
    case Kind::unreadable: break;
  }
  return "unreadable";
}

const char* nameOf(KeptPath::Reason reason) {
  switch (reason) {
    case KeptPath::Reason::unknown: return "unknown";
    case KeptPath::Reason::foreign: return "foreign";
    case KeptPath::Reason::changed: return "changed";
    case KeptPath::Reason::other: return "other";
    case KeptPath::Reason::unreadable: return "unreadable";
    case KeptPath::Reason::empty: return "empty";
    case KeptPath::Reason::failed: break;
  }
  return "failed";
}

Json jsonOf(const Error& error) { return {{"path", error.subject}, {"reason", error.reason()}}; }

Json jsonOf(const PlannedItem& item, const PlannedGroup& group, bool isIntact) {
  Json json = {{"source", item.source},    {"target", item.target},    {"kind", nameOf(item.kind)},
               {"bytes", item.size.bytes}, {"files", item.size.files}, {"fate", nameOf(item.fate)}};
  if (item.fate == Fate::replaced) json["intact"] = isIntact;
  if (item.fate == Fate::kept) json["reason"] = nameOf(item.keptBecause);
  if (group.host) json["host"] = *group.host;
  if (item.details == nullptr) return json;
  const auto& [obstacle, offered, present] = *item.details;
  if (!offered.empty()) json["offeredVersion"] = offered;
  if (!present.empty()) json["presentVersion"] = present;
  if (obstacle) json["obstacle"] = obstacle->description();
  return json;
}

Json jsonOf(const ItemDifference& difference) {
  Json json = {{"path", difference.path}, {"kind", nameOf(difference.kind)}};
  if (!difference.expected.empty()) json["expected"] = difference.expected;
  if (!difference.found.empty()) json["found"] = difference.found;
  return json;
}

Json jsonOf(const HostFacts& host) {
  Json json = {{"name", host.name},
               {"folder", host.folder},
               {"application", host.application},
               {"version", host.version},
               {"architectures", host.architectures},
               {"canLoad", nullptr}};
  if (host.canLoad) json["canLoad"] = *host.canLoad;
  Json& problems = json["problems"] = Json::array();
  for (const LoadingProblem& problem : host.problems) {
    Json entry = {{"kind", nameOf(problem.kind)}, {"plugIn", problem.plugIn}, {"detail", problem.detail}};
    if (!problem.path.empty()) entry["path"] = problem.path;
    problems.push_back(std::move(entry));
  }
  return json;
}

}  // namespace

std::string planJson(const PlanReport& report, const std::string& volume, const ToolTexts& texts) {
  Json answer = answerFor(volume, texts);
  answer["changes"] = report.changes;
  Json& items = answer["items"] = Json::array();
  forEachItem(report.plan, [&](const PlannedItem& item, const PlannedGroup& group) {
    items.push_back(jsonOf(item, group, report.isIntact(item)));
  });
  answer["otherFiles"] = report.otherFiles;
  Json& hosts = answer["hosts"] = Json::array();
  for (const auto& host : report.plan.hosts()) {
    hosts.push_back({{"name", host->hostName()}, {"folder", joinPath({host->plugInPath()})}});
  }
  Json& space = answer["space"] = Json::array();
  for (const SpaceNeed& need : report.plan.space()) {
    space.push_back({{"path", need.path},
                     {"required", need.required},
                     {"largest", need.largest},
                     {"available", need.available},
                     {"mayShareBlocks", need.mayShareBlocks}});
  }
  Json& skipped = answer["skipped"] = Json::array();
  for (const SkippedEntry& entry : report.plan.skipped()) {
    skipped.push_back({{"path", entry.path}, {"reason", nameOf(entry.reason)}});
  }
  Json& unreadable = answer["unreadable"] = Json::array();
  for (const PlannedGroup& group : report.plan.groups()) {
    for (const Error& error : group.unreadable) unreadable.push_back(jsonOf(error));
  }
  for (const Error& error : report.unreadable) unreadable.push_back(jsonOf(error));
  return written(answer);
}

std::string hostsJson(const std::vector<HostFacts>& hosts, const std::string& volume, const ToolTexts& texts) {
  Json answer = answerFor(volume, texts);
  Json& list = answer["hosts"] = Json::array();
  for (const HostFacts& host : hosts) list.push_back(jsonOf(host));
  return written(answer);
}

std::string verifyJson(const VerifyReport& report, const std::string& volume, const ToolTexts& texts) {
  Json answer = answerFor(volume, texts);
  answer["places"] = report.places;
  answer["logged"] = report.logged;
  Json& differences = answer["differences"] = Json::array();
  for (const ItemDifference& difference : report.differences) differences.push_back(jsonOf(difference));
  Json& errors = answer["errors"] = Json::array();
  for (const Error& error : report.errors) errors.push_back(jsonOf(error));
  return written(answer);
}

std::string removalJson(const RemovalPlan& plan, const RemovalOutcome* outcome, const std::string& volume,
                        const ToolTexts& texts) {
  Json answer = answerFor(volume, texts);
  answer["isDone"] = outcome != nullptr;
  answer["removed"] = outcome == nullptr ? plan.removed : outcome->removed;
  answer["gone"] = plan.gone;
  answer["changed"] = plan.changed;
  Json& list = answer["kept"] = Json::array();
  for (const KeptPath& kept : outcome == nullptr ? plan.kept : outcome->kept) {
    Json entry = {{"path", kept.path}, {"reason", nameOf(kept.reason)}};
    if (!kept.problem.empty()) entry["problem"] = kept.problem;
    list.push_back(std::move(entry));
  }
  return written(answer);
}

std::string findingsJson(const std::vector<Finding>& findings, const std::string& bundle) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    Json entry = {{"id", finding.id}, {"severity", nameOf(finding.severity)}, {"file", finding.place.file}};
    if (finding.place.line != 0) entry["line"] = finding.place.line;
    if (!finding.place.key.empty()) entry["key"] = finding.place.key;
    entry["what"] = finding.what;
    entry["consequence"] = finding.consequence;
    entry["fix"] = finding.fix;
    list.push_back(std::move(entry));
  }
  return written({{"version", formatVersion}, {"bundle", bundle}, {"findings", std::move(list)}});
}
