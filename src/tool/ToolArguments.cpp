// SPDX-License-Identifier: Apache-2.0

#include <CLI/CLI.hpp>

#include <sstream>
#include <string_view>

#include "foundation/Format.h"
#include "tool/ToolRequest.h"

namespace {

std::string isNotEmpty(const std::string& path) { return path.empty() ? "the path is empty" : ""; }

/// The command line, and what it fills in.
class CommandLine {
 public:
  CommandLine(const ToolTexts& texts, ToolRequest& request)
      : texts_(texts),
        request_(request),
        app_(texts("tool_about", "Shows, checks and removes what the installer installs.")) {
    app_.name("InstallerTool");
    app_.require_subcommand(1);
    setUp(app_);
    const std::string product = texts.product().empty() ? "InstallerTool" : texts.product();
    app_.set_version_flag("--version", product + " " + texts.version(), texts("tool_version", "Show the version"));
    add(ToolRequest::Command::plan, "plan",
        texts("tool_plan", "Show what an install without a window would do; changes nothing"));
    add(ToolRequest::Command::hosts, "hosts",
        texts("tool_hosts", "Show the host applications, and whether they can load the plug-in"));
    CLI::App* const verify = add(ToolRequest::Command::verify, "verify",
                                 texts("tool_verify", "Compare what is installed with what this installer brings"));
    verify->add_flag("--installed", request.isOnlyLogged,
                     texts("tool_verify_installed", "Only what the log of installed paths lists"));
    CLI::App* const remove =
        add(ToolRequest::Command::remove, "remove",
            texts("tool_remove", "Remove what the log of installed paths lists, and nothing else"));
    remove->add_flag("--yes", request.isConfirmed, texts("tool_remove_yes", "Do not ask before removing"));
    remove->add_flag("--dry-run", request.isTrial, texts("tool_remove_trial", "Only show what would be removed"));
    remove->add_flag("--keep-changed", request.keepsChanged,
                     texts("tool_remove_keep", "Keep files that were changed since the install"));
    CLI::App* const munki = add(ToolRequest::Command::munki, "munki",
                                texts("tool_munki", "Write the description of the product for Munki"));
    munki->remove_option(munki->get_option("--json"));
    munki->add_option("--folder", request.folder, texts("tool_munki_folder", "Where the installer is kept on the Macs"))
        ->type_name(texts("tool_folder", "FOLDER"));
    addNew();
    addCheck();
    addPack();
    addPreview();
  }

  ToolArguments read(int count, const char* const* arguments) {
    ToolArguments result;
    try {
      app_.parse(count, arguments);
      const bool asks = request_.command == ToolRequest::Command::remove && !request_.isConfirmed && !request_.isTrial;
      if (asks && request_.isJson)
        throw CLI::ValidationError("--json", texts_("tool_json_yes", "needs --yes or --dry-run"));
      return result;
    } catch (const CLI::ParseError& error) {
      std::ostringstream output;
      std::ostringstream errors;
      const int status = app_.exit(error, output, errors);
      result.isRequest = false;
      result.output = output.str();
      result.errors = errors.str();
      result.status = status == 0 ? ToolStatus::success : ToolStatus::usage;
      return result;
    }
  }

 private:
  // For makers of installers, in English only.

  CLI::App* addForMakers(ToolRequest::Command command, const std::string& name, const std::string& description) {
    CLI::App* const added = add(command, name, description);
    added->remove_option(added->get_option("--target"));
    added->remove_option(added->get_option("--json"));
    added->add_option("BUNDLE", request_.kit.bundle, "The installer's bundle")
        ->required()
        ->type_name("")
        ->check(isNotEmpty);
    return added;
  }

  void addNew() {
    CLI::App* const make = add(ToolRequest::Command::make, "new", "Make an installer's bundle for another product");
    make->remove_option(make->get_option("--target"));
    make->remove_option(make->get_option("--json"));
    make->add_option("FOLDER", request_.kit.newFolder, "The folder to make")
        ->required()
        ->type_name("")
        ->check(isNotEmpty);
  }

  void addCheck() {
    CLI::App* const check =
        addForMakers(ToolRequest::Command::check, "check", "Find mistakes in an installer's bundle");
    check->add_flag("--json", request_.isJson, "Answer in JSON");
  }

  void addPack() {
    CLI::App* const pack =
        addForMakers(ToolRequest::Command::pack, "pack", "Make an application and a disk image for Macs of a bundle");
    pack->add_option("--sign", request_.kit.identity, "Sign with this certificate")->type_name("IDENTITY");
    pack->add_option("--notarize", request_.kit.profile, "Have Apple notarize it, too")->type_name("PROFILE");
  }

  void addPreview() {
    CLI::App* const preview = addForMakers(ToolRequest::Command::preview, "preview",
                                           "Show an installer on a volume that is thrown away afterwards");
    ToolRequest::Kit& kit = request_.kit;
    preview->add_option("--language", kit.language, "In this language, as \"de\" or \"zh-Hans\"")
        ->type_name("LANGUAGE");
    preview->add_option("--appearance", kit.appearance, "Light or dark")->check(CLI::IsMember({"light", "dark"}));
    preview->add_option("--hosts", kit.hosts, "How many applications there are to install into: 0 to 3")
        ->check(CLI::IsMember({"0", "1", "2", "3"}));
    preview->add_option("--pictures", kit.pictures, "Save a picture of each page there instead of opening a window")
        ->type_name("FOLDER");
  }

  void setUp(CLI::App& app) {
    app.option_defaults()->group(texts_("tool_label_options", "Options"));
    app.set_help_flag("--help", texts_("tool_help", "Show this help"));
    const auto formatter = std::make_shared<CLI::Formatter>();
    formatter->label("Usage", texts_("tool_label_usage", "Usage"));
    formatter->label("OPTIONS", texts_("tool_label_option", "OPTIONS"));
    formatter->label("SUBCOMMAND", texts_("tool_label_command", "COMMAND"));
    app.formatter(formatter);
    app.failure_message(
        [](const CLI::App* failed, const CLI::Error& error) { return CLI::FailureMessage::simple(failed, error); });
  }

  CLI::App* add(ToolRequest::Command command, const std::string& name, const std::string& description) {
    CLI::App* const added = app_.add_subcommand(name, description);
    setUp(*added);
    added->group(texts_("tool_label_commands", "Commands"));
    added
        ->add_option("--target", request_.target,
                     texts_("tool_target", "The Mac volume; the running system if left out"))
        ->type_name(texts_("tool_folder", "FOLDER"));
    added->add_flag("--json", request_.isJson, texts_("tool_json", "Answer in JSON"));
    added->callback([this, command] { request_.command = command; });
    return added;
  }

  const ToolTexts& texts_;
  ToolRequest& request_;
  CLI::App app_;
};

}  // namespace

std::vector<std::string> ToolRequest::scriptArguments() const {
  if (command == Command::preview)
    return {kit.bundle, kit.language, kit.appearance, kit.hosts, kit.pictures, kit.payload};
  std::vector<std::string> arguments = {kit.bundle};
  if (!kit.identity.empty()) arguments.insert(arguments.end(), {"--sign", kit.identity});
  if (!kit.profile.empty()) arguments.insert(arguments.end(), {"--notarize", kit.profile});
  return arguments;
}

std::string targetAmong(int count, const char* const* arguments) {
  constexpr std::string_view option = "--target";
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == option && i + 1 < count) return arguments[i + 1];
    if (argument.starts_with("--target=")) return std::string(argument.substr(option.size() + 1));
  }
  return "/";
}

ToolArguments readToolArguments(int count, const char* const* arguments, const ToolTexts& texts) {
  ToolRequest request;
  ToolArguments result = CommandLine(texts, request).read(count, arguments);
  result.request = request;
  return result;
}
