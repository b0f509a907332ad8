// A whole configuration root from one input: the pieces between
// fuzz_support::kSplit lines become, in order, the extension file
// extensiondb/user/101.cfg, the line database linedb, general.cfg and
// gateways.cfg. The agent is constructed over it as the call manager does,
// destroyed, and its tables released.
#include <string>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "tests/fuzz/fuzz_support.h"
#include "tests/support/agent_support.h"

namespace {

// What the agent holds beyond the load's NULL slots: at most the one user
// extension and the attendants a root without attendant files can have.
const size_t kMaxLoaded = 1;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_support::Root();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> files = fuzz_support::Split(fuzz_support::AsText(data, size), 4);

  // Start from an empty root each time: the agent writes some files back
  // (runtime database names, caches), and what one input left must not
  // change how the next one loads.
  const fuzz_support::FuzzRoot* root = &fuzz_support::Root();
  root->Clear("telephony");
  root->MakeDirs("telephony/extensiondb/user");
  root->Write("telephony/extensiondb/user/101.cfg", files[0]);
  root->Write("telephony/linedb", files[1]);
  root->Write("telephony/general.cfg", files[2]);
  root->Write("telephony/gateways.cfg", files[3]);
  root->Write("telephony/paths.cfg", testing_support::kAllRuntimePaths);

  CMAgent* agent = new CMAgent;
  FUZZ_CHECK(agent->baseCapacity <= (1u << 20));
  FUZZ_CHECK(agent->extensionBase.size() <= agent->baseCapacity + kMaxLoaded);
  size_t loaded = 0;
  for (const ExtensionData* extension : agent->extensionBase) {
    if (extension == nullptr) continue;
    ++loaded;
    FUZZ_CHECK(extension->name == "101" && extension->type == kExtUser);
  }
  FUZZ_CHECK(loaded <= kMaxLoaded);
  agent->Destroy();
  testing_support::ReleaseTables(*agent);
  delete agent;
  return 0;
}
