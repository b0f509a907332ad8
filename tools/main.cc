// cmcfg: inspect an appliance's configuration as the call manager sees it.
#include <iostream>

#include "tools/cli.h"

int main(int argc, char** argv) {
  return cmcfg_tool::RunCommandLine(argc, argv, std::cout, std::cerr);
}
