#include "tools/cli.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <ostream>

#include "tools/suggest.h"
#include "tools/verb.h"

#ifndef CMCFG_VERSION
#define CMCFG_VERSION "unknown"
#endif

namespace cmcfg_tool {
namespace {

const char kToolDescription[] =
    "cmcfg - inspect a configuration root as the configuration agent sees it, check its files, "
    "and make the changes a telephone or the web configuration makes";
const char kRootHelp[] = "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)";
const char kLogDirHelp[] =
    "Keep the agent's cmcfg.log in this folder (default: $CMCFG_LOG_DIR; else no log is kept)";

// The options every verb takes, before or after the verb.
void AddRootOptions(CLI::App* app, Invocation* invocation) {
  app->add_option("--root", invocation->root, kRootHelp);
  app->add_option("--log-dir", invocation->logDir, kLogDirHelp);
}

void AddVerbOptions(CLI::App* sub, const Verb& verb, Invocation* invocation) {
  if (verb.maxOperands > 0)
    sub->add_option("OPERANDS", invocation->operands, verb.operands)->expected(-1);
  AddRootOptions(sub, invocation);
  if (verb.options & kJsonOption) sub->add_flag("--json", invocation->json, "Print JSON");
  if (verb.options & kDryRunOption)
    sub->add_flag("--dry-run", invocation->dryRun,
                  "Print the unified diff of what would be written; write nothing");
  if (verb.options & kReplaceOption)
    sub->add_flag("--replace", invocation->replace,
                  "set: replace a different number already set from the phone");
  if (verb.options & kOutgoingOption)
    sub->add_flag("--outgoing", invocation->outgoing,
                  "The outgoing black list (default: the incoming one)");
  if (verb.options & kCallTypeOption)
    sub->add_option("--call-type", invocation->callType, "number, sip or pstn (default: number)")
        ->check(CLI::IsMember({"number", "sip", "pstn"}, CLI::ignore_case));
  if (verb.options & kEditedOption)
    sub->add_option("--edited", invocation->edited,
                    "A file to put in place first, as the web configuration saves it; it is "
                    "checked as 'cmcfg check' checks it and refused on an error");
  sub->footer(std::string("See man cmcfg-") + verb.name + ".\n\n" + kStatusTable);
}

// The tool's application: every verb of the table with its options.
struct CommandLine {
  CLI::App app{kToolDescription, "cmcfg"};  // not argv[0]: usage names the tool as typed
  Invocation invocation;
  std::vector<std::pair<CLI::App*, const Verb*>> verbs;

  CommandLine() {
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("cmcfg ") + CMCFG_VERSION,
                         "Print the version and exit");
    AddRootOptions(&app, &invocation);
    app.footer(std::string("Run 'cmcfg VERB --help' for a verb's options, or 'man cmcfg'.\n\n") +
               kStatusTable);
    for (const Verb& verb : Verbs()) {
      CLI::App* sub = app.add_subcommand(verb.name, verb.summary);
      AddVerbOptions(sub, verb, &invocation);
      verbs.emplace_back(sub, &verb);
    }
  }

  std::vector<std::string> KnownOptions() const {
    std::vector<std::string> names;
    for (const auto& verb : verbs)
      for (const CLI::Option* option : verb.first->get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
  }
};

// After a usage error: the nearest verb or option to the first word that is
// neither, when one is near.
void Suggest(const CommandLine& line, int argc, const char* const* argv, std::ostream& err) {
  std::vector<std::string> verbNames;
  for (const Verb& verb : Verbs()) verbNames.push_back(verb.name);
  const std::vector<std::string> options = line.KnownOptions();
  bool verbSeen = false;
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    if (word.compare(0, 2, "--") == 0) {
      word = word.substr(0, word.find('='));
      if (std::find(options.begin(), options.end(), word) != options.end()) {
        if ((word == "--root" || word == "--log-dir" || word == "--call-type" ||
             word == "--edited") &&
            std::string(argv[i]).find('=') == std::string::npos)
          ++i;  // its value
        continue;
      }
      const std::string near = Nearest(word, options);
      if (!near.empty()) err << "cmcfg: did you mean " << near << "?\n";
      return;
    }
    if (verbSeen) continue;
    if (std::find(verbNames.begin(), verbNames.end(), word) != verbNames.end()) {
      verbSeen = true;
      continue;
    }
    const std::string near = Nearest(word, verbNames);
    if (!near.empty()) err << "cmcfg: did you mean " << near << "?\n";
    return;
  }
}

int Run(const CommandLine& line, std::ostream& out, std::ostream& err) {
  for (const auto& verb : line.verbs) {
    if (!*verb.first) continue;
    const size_t given = line.invocation.operands.size();
    if (given < verb.second->minOperands || given > verb.second->maxOperands) {
      err << "cmcfg " << verb.second->name << ": expected " << verb.second->operands
          << "\nRun 'cmcfg " << verb.second->name << " --help' for more.\n";
      return kUsage;
    }
    const int status = verb.second->run(line.invocation, out, err);
    // Output that did not arrive must not pass for a complete one.
    if (!out.flush()) {
      err << "cmcfg: cannot write the output\n";
      return status == kUsage ? kUsage : kFindings;
    }
    return status;
  }
  return kUsage;
}

void CollectUndescribed(const CLI::App& app, const std::string& verb,
                        std::vector<std::string>* missing) {
  for (const CLI::Option* option : app.get_options())
    if (option->get_description().empty()) missing->push_back(verb + " " + option->get_name());
  for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (sub->get_description().empty()) missing->push_back(sub->get_name());
    CollectUndescribed(*sub, sub->get_name(), missing);
  }
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CommandLine line;
  try {
    line.app.parse(argc, argv);
  } catch (const CLI::Success& e) {  // --help, --version
    line.app.exit(e, out, err);
    return kOk;
  } catch (const CLI::ParseError& e) {
    line.app.exit(e, out, err);
    Suggest(line, argc, argv, err);
    return kUsage;
  }
  try {
    return Run(line, out, err);
  } catch (const std::exception& e) {
    // Caught so that the scratch folders are removed on the way out.
    err << "cmcfg: " << e.what() << "\n";
    return kFindings;
  }
}

std::vector<std::string> UndescribedParts() {
  CommandLine line;
  std::vector<std::string> missing;
  if (line.app.get_description().empty()) missing.push_back("");
  CollectUndescribed(line.app, "", &missing);
  return missing;
}

}  // namespace cmcfg_tool
