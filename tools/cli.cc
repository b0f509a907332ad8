#include "tools/cli.h"

#include <CLI/CLI.hpp>
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

void AddCommonOptions(CLI::App* verb, std::string* root, std::string* logDir, bool* json) {
  verb->add_option("--root", *root,
                   "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)");
  verb->add_option("--log-dir", *logDir, "Folder for cmcfg.log (default: the current directory)");
  verb->add_flag("--json", *json, "Print JSON instead of text");
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CLI::App app{
      "cmcfg - inspect the configuration agent's view of a configuration root, and drive its "
      "write-back operations on it"};
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("cmcfg ") + CMCFG_VERSION,
                       "Print the version and exit");

  ShowOptions show;
  CLI::App* showCmd = app.add_subcommand("show", "Load the configuration and print a summary");
  AddCommonOptions(showCmd, &show.root, &show.logDir, &show.json);

  ExtOptions ext;
  CLI::App* extCmd =
      app.add_subcommand("ext", "Load the configuration and print one extension or attendant");
  extCmd->add_option("name", ext.name, "Extension or attendant name")->required();
  AddCommonOptions(extCmd, &ext.root, &ext.logDir, &ext.json);

  CheckOptions check;
  CLI::App* checkCmd =
      app.add_subcommand("check", "Read the configuration files and report what is wrong in them");
  checkCmd->add_option("--root", check.root,
                       "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)");
  checkCmd->add_flag("--json", check.json, "Print JSON instead of text");

  DumpOptions dump;
  CLI::App* dumpCmd = app.add_subcommand(
      "dump", "Load the configuration and print every loaded record as one JSON document");
  AddCommonOptions(dumpCmd, &dump.root, &dump.logDir, &dump.json);

  DiffOptions diff;
  CLI::App* diffCmd = app.add_subcommand(
      "diff", "Load two configuration roots and print what the agent holds differently");
  diffCmd->add_option("root_a", diff.rootA, "The first configuration root")->required();
  diffCmd->add_option("root_b", diff.rootB, "The second configuration root")->required();
  diffCmd->add_option("--log-dir", diff.logDir,
                      "Folder for cmcfg.log (default: the current directory)");

  WriteBackVerbs writeBack(&app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e, out, err);
  }
  if (*showCmd) return RunShow(show, out, err);
  if (*extCmd) return RunExt(ext, out, err);
  if (*dumpCmd) return RunDump(dump, out, err);
  if (*diffCmd) return RunDiff(diff, out, err);
  if (*checkCmd) return RunCheck(check, out, err);
  const int status = writeBack.Run(out, err);
  return status >= 0 ? status : 1;
}

}  // namespace cmcfg_tool
