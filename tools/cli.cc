#include "tools/cli.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "tools/check.h"
#include "tools/diff.h"
#include "tools/dump.h"
#include "tools/ext.h"
#include "tools/show.h"
#include "tools/write_back_cli.h"

#ifndef CMCFG_VERSION
#define CMCFG_VERSION "unknown"
#endif

namespace cmcfg_tool {
namespace {

const char kRootHelp[] = "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)";
const char kLogDirHelp[] =
    "Folder for cmcfg.log (default: $CMCFG_LOG_DIR, else the current directory; when that is "
    "inside the root, $TMPDIR or /tmp)";
const char kJsonHelp[] = "Print JSON instead of text";
const char kLoadReadsOnly[] =
    "Reads only: nothing in the root is created, changed or removed, though the load behaves "
    "as if the call manager's usual saves (default database names, the trimmed external-user "
    "cache) had happened.";
const char kPrintedStatuses[] = "0 printed; 2 the root cannot be read; 100 and up a usage error.";
const char kCheckReadsOnly[] =
    "Reads only: the files are read with the store's reader, the agent is not loaded and "
    "nothing in the root is created, changed or removed.";

void AddCommonOptions(CLI::App* verb, std::string* root, std::string* logDir, bool* json) {
  verb->add_option("--root", *root, kRootHelp);
  verb->add_option("--log-dir", *logDir, kLogDirHelp);
  verb->add_flag("--json", *json, kJsonHelp);
}

// The full story of an inspection verb and its exit statuses, under its
// own help only.
void Explain(CLI::App* verb, const char* details, const std::string& statuses) {
  verb->footer(details + (" See docs/man/" + verb->get_name()) + ".md.\n\nExit status: " +
               statuses);
}

// The tool's application: every verb with its options, help and statuses.
class Verbs {
 public:
  explicit Verbs(CLI::App* app) : app_(app) {
    Configure();
    writeBack_ = std::make_unique<WriteBackVerbs>(app);  // listed after the inspection verbs
  }

  // After a successful parse: the status of the verb that was given.
  int Run(std::ostream& out, std::ostream& err) {
    if (*showCmd_) return RunShow(show_, out, err);
    if (*extCmd_) return RunExt(ext_, out, err);
    if (*dumpCmd_) return RunDump(dump_, out, err);
    if (*diffCmd_) return RunDiff(diff_, out, err);
    if (*checkCmd_) return RunCheck(check_, out, err);
    const int status = writeBack_->Run(out, err);
    return status >= 0 ? status : 1;
  }

 private:
  void Configure() {
    app_->require_subcommand(1);
    app_->set_version_flag("--version", std::string("cmcfg ") + CMCFG_VERSION,
                           "Print the version and exit");

    showCmd_ = app_->add_subcommand("show", "Load the configuration and print a summary");
    AddCommonOptions(showCmd_, &show_.root, &show_.logDir, &show_.json);
    Explain(showCmd_, kLoadReadsOnly, kPrintedStatuses);

    extCmd_ =
        app_->add_subcommand("ext", "Load the configuration and print one extension or attendant");
    extCmd_->add_option("name", ext_.name, "Extension or attendant name")->required();
    AddCommonOptions(extCmd_, &ext_.root, &ext_.logDir, &ext_.json);
    Explain(extCmd_, kLoadReadsOnly,
            "0 printed; 1 no extension or attendant has that name; 2 the root cannot be read; "
            "100 and up a usage error.");

    checkCmd_ = app_->add_subcommand(
        "check", "Read the configuration files and report what is wrong in them");
    checkCmd_->add_option("--root", check_.root, kRootHelp);
    checkCmd_->add_flag("--json", check_.json, kJsonHelp);
    Explain(checkCmd_, kCheckReadsOnly,
            "0 no error (warnings allowed); 1 at least one error; 2 the root cannot be read; 100 "
            "and up a usage error.");

    dumpCmd_ = app_->add_subcommand(
        "dump", "Load the configuration and print every loaded record as one JSON document");
    AddCommonOptions(dumpCmd_, &dump_.root, &dump_.logDir, &dump_.json);
    Explain(dumpCmd_, kLoadReadsOnly, kPrintedStatuses);

    diffCmd_ = app_->add_subcommand(
        "diff", "Load two configuration roots and print what the agent holds differently");
    diffCmd_->add_option("root_a", diff_.rootA, "The first configuration root")->required();
    diffCmd_->add_option("root_b", diff_.rootB, "The second configuration root")->required();
    diffCmd_->add_option("--log-dir", diff_.logDir, kLogDirHelp);
    Explain(diffCmd_, kLoadReadsOnly,
            "0 the agent holds the same for both; 1 it does not (one line per difference); 2 a "
            "root cannot be read; 100 and up a usage error.");
  }

  CLI::App* app_;
  ShowOptions show_;
  ExtOptions ext_;
  CheckOptions check_;
  DumpOptions dump_;
  DiffOptions diff_;
  CLI::App* showCmd_ = nullptr;
  CLI::App* extCmd_ = nullptr;
  CLI::App* checkCmd_ = nullptr;
  CLI::App* dumpCmd_ = nullptr;
  CLI::App* diffCmd_ = nullptr;
  std::unique_ptr<WriteBackVerbs> writeBack_;
};

const char kToolDescription[] =
    "cmcfg - inspect the configuration agent's view of a configuration root, and drive its "
    "write-back operations on it";

void CollectUndescribed(const CLI::App& app, const std::string& verb,
                        std::vector<std::string>* missing) {
  for (const CLI::Option* option : app.get_options())
    if (option->get_description().empty()) missing->push_back(verb + " " + option->get_name());
  for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
    // An option group has no name; its options count as the verb's.
    const std::string name = sub->get_name().empty() ? verb : sub->get_name();
    if (sub->get_description().empty()) missing->push_back(name);
    CollectUndescribed(*sub, name, missing);
  }
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CLI::App app{kToolDescription, "cmcfg"};  // not argv[0]: usage lines name the tool as typed
  Verbs verbs(&app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e, out, err);
  }
  return verbs.Run(out, err);
}

std::vector<std::string> UndescribedParts() {
  CLI::App app{kToolDescription, "cmcfg"};
  Verbs verbs(&app);
  std::vector<std::string> missing;
  if (app.get_description().empty()) missing.push_back("");
  CollectUndescribed(app, "", &missing);
  return missing;
}

}  // namespace cmcfg_tool
