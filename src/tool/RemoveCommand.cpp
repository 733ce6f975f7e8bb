// SPDX-License-Identifier: Apache-2.0

#include "tool/RemoveCommand.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <string>

#include "foundation/Format.h"
#include "foundation/Text.h"
#include "tool/Json.h"
#include "tool/Remover.h"

namespace {

class RemoveCommand {
 public:
  RemoveCommand(const ToolRequest& request, Platform& platform, const std::string& volume, const ToolStreams& streams)
      : request_(request),
        platform_(platform),
        volume_(volume),
        texts_(&platform),
        tools_(platform),
        streams_(streams) {}

  ToolStatus run() {
    const RemovalPlan shown = planRemoval(platform_, request_.keepsChanged);
    if (request_.isTrial) return showTrial(shown);
    if (shown.log.empty()) return finish(shown, {});
    if (!request_.isConfirmed) {
      write(shown);
      const auto status = confirm();
      if (status != ToolStatus::success) return status;
    }
    if (!tools_.obtain()) return complain(denied(), ToolStatus::noRights);
    if (const Status locked = lock(); !locked) {
      return complain(locked.error().description(), ToolStatus::unavailable);
    }
    Remover remover(platform_, tools_);
    const Status begun = remover.begin();
    // Only what was shown goes, as it was shown.
    const RemovalPlan plan = planRemoval(platform_, request_.keepsChanged);
    if (!begun) return finish(plan, {.kept = plan.kept, .isDenied = tools_.isDenied(), .problem = begun.error()});
    if (!request_.isConfirmed && !(plan == shown)) {
      return complain(texts_("tool_remove_meanwhile", "The volume has changed meanwhile. Nothing was removed."),
                      ToolStatus::differences);
    }
    return finish(plan, remover.remove(plan));
  }

 private:
  ToolStatus showTrial(const RemovalPlan& plan) {
    if (request_.isJson) {
      streams_.output << removalJson(plan, nullptr, volume_, texts_);
    } else {
      write(plan);
    }
    return ToolStatus::success;
  }

  void write(const RemovalPlan& plan) {
    line(formatted(texts_("tool_remove_title", "%1$@ on %2$@:"), texts_.product(), volume_));
    for (const std::string& path : plan.removed) {
      line("  " + formatted(texts_("tool_remove_would", "to be removed: %@"), path));
    }
    writeRest(plan, plan.kept);
  }

  void writeRest(const RemovalPlan& plan, const std::vector<KeptPath>& kept) {
    for (const std::string& path : plan.changed) {
      line("  " + formatted(texts_("tool_changed", "changed since the install: %@"), path));
    }
    for (const std::string& path : plan.gone) line("  " + formatted(texts_("tool_gone", "already gone: %@"), path));
    for (const KeptPath& path : kept) {
      line("  " + formatted(texts_("tool_kept", "kept: %1$@: %2$@"), path.path, reasonOf(path)));
    }
  }

  ToolStatus confirm() {
    const std::string yes = texts_("tool_answer_yes", "yes");
    streams_.output << formatted(texts_("tool_remove_ask", "Type \"%@\" to remove all of this: "), yes) << std::flush;
    std::string answer;
    if (!std::getline(streams_.input, answer)) {
      streams_.output << '\n';
      return complain(texts_("tool_remove_nobody", "nobody is there to confirm it; --yes goes without"),
                      ToolStatus::unavailable);
    }
    if (trimmed(answer) == yes || trimmed(answer) == "yes") return ToolStatus::success;
    line(texts_("tool_remove_declined", "Nothing was removed."));
    return ToolStatus::differences;
  }

  Status lock() {
    return tools_.lockVolume([&, isShown = false]() mutable {
      const std::string text = texts_("waiting_for_installer", "Waiting for another installer to finish…");
      if (!std::exchange(isShown, true)) streams_.errors << "InstallerTool: " << onOneLine(text) << std::endl;
      return !platform_.interruptions.requested();
    });
  }

  ToolStatus finish(const RemovalPlan& plan, const RemovalOutcome& outcome) {
    if (request_.isJson) {
      streams_.output << removalJson(plan, &outcome, volume_, texts_);
    } else if (plan.log.empty()) {
      line(texts_("tool_remove_nothing", "There is no log of installed paths. Nothing is removed."));
    } else {
      for (const std::string& path : outcome.removed) {
        line("  " + formatted(texts_("tool_removed", "removed: %@"), path));
      }
      writeRest(plan, outcome.kept);
      line(formatted(texts_("tool_removed_count", "Removed: %1$@. Kept: %2$@."), std::to_string(outcome.removed.size()),
                     std::to_string(outcome.kept.size())));
    }
    if (outcome.isDenied) return complain(denied(), ToolStatus::noRights);
    if (outcome.problem) {
      return complain(outcome.problem->description(), outcome.isBegun ? ToolStatus::output : ToolStatus::unavailable);
    }
    if (outcome.isLogLeft) {
      return complain(texts_("quiet_no_log", "The log of installed paths could not be written."), ToolStatus::output);
    }
    const bool isAllGone =
        std::ranges::all_of(outcome.kept, [](const KeptPath& kept) { return kept.reason == KeptPath::Reason::empty; });
    return isAllGone ? ToolStatus::success : ToolStatus::differences;
  }

  [[nodiscard]] std::string reasonOf(const KeptPath& kept) const {
    switch (kept.reason) {
      case KeptPath::Reason::unknown: return texts_("tool_keep_unknown", "nothing that this installer put there");
      case KeptPath::Reason::foreign: return texts_("tool_keep_foreign", "not part of the product");
      case KeptPath::Reason::changed: return texts_("tool_keep_changed", "changed since the install");
      case KeptPath::Reason::other: return texts_("tool_keep_other", "something else than what was installed");
      case KeptPath::Reason::unreadable: return texts_("tool_unreadable", "cannot be read");
      case KeptPath::Reason::empty: return texts_("tool_keep_empty", "an empty folder that may have been there before");
      case KeptPath::Reason::failed: break;
    }
    return kept.problem;
  }

  [[nodiscard]] std::string denied() const { return texts_("quiet_denied", "Administrator rights were refused."); }

  ToolStatus complain(const std::string& what, ToolStatus status) {
    streams_.errors << "InstallerTool: " << onOneLine(what) << '\n';
    return status;
  }

  void line(const std::string& text) { streams_.output << onOneLine(text) << '\n'; }

  const ToolRequest& request_;
  Platform& platform_;
  const std::string& volume_;
  ToolTexts texts_;
  PrivilegedTools tools_;
  const ToolStreams& streams_;
};

}  // namespace

ToolStatus removeInstalled(const ToolRequest& request, Platform& platform, const std::string& volume,
                           const ToolStreams& streams) {
  return RemoveCommand(request, platform, volume, streams).run();
}
