// cmcfg: inspect an appliance's configuration as the call manager sees it.
#include <iostream>

#include <CLI/CLI.hpp>

#include "tools/show.h"

int main(int argc, char** argv) {
  CLI::App app{"cmcfg - inspect the configuration agent's view of a configuration root"};
  app.require_subcommand(1);

  cmcfg_tool::ShowOptions show;
  CLI::App* showCmd = app.add_subcommand("show", "Load the configuration and print a summary");
  showCmd->add_option("--root", show.root,
                      "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)");
  showCmd->add_option("--log-dir", show.logDir,
                      "Folder for cmcfg.log (default: the current directory)");
  showCmd->add_flag("--json", show.json, "Print the summary as JSON");

  CLI11_PARSE(app, argc, argv);
  if (*showCmd) return cmcfg_tool::RunShow(show, std::cout, std::cerr);
  return 1;
}
