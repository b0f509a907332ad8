// A whole configuration root from one input: the pieces between
// fuzz_support::kSplit lines become, in order, the extension file
// extensiondb/user/101.cfg, the line database linedb, general.cfg and
// gateways.cfg. The agent is constructed over it as the call manager does,
// destroyed, and its tables released.
#include <cstdlib>
#include <string>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

using fuzz_support::FuzzRoot;

FuzzRoot* root = nullptr;

// Every runtime database named, so that the load has no default name to
// save back: a save is flushed to disk, which would make each input cost a
// few disk syncs instead of a fraction of a millisecond.
const char kPaths[] =
    "section paths\n{\n"
    "external_user_cache_file = external_user_cache_db\n"
    "reg_status_file = reg_status_file\n"
    "cdr_stated_db = CDR_db\n"
    "cdr_missed_db = missed_calls_db\n"
    "cdr_failed_db = unsuccess_calls_db\n"
    "}\n";

// What the agent holds beyond the load's NULL slots: at most the one user
// extension and the attendants a root without attendant files can have.
const size_t kMaxLoaded = 1;

// Erases every record, as the call manager does at shutdown (the agent
// leaves them to its caller; the leak check would count a forgotten one).
void ReleaseTables(CMAgent& agent) {
  for (size_t i = 0; i < agent.extensionBase.size(); ++i) agent.EraseExtension(i, true, false);
  while (!agent.attendants.empty()) agent.EraseAttendant(agent.attendants.size() - 1);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  root = new FuzzRoot;
  atexit([] { delete root; });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<std::string> files = fuzz_support::Split(fuzz_support::AsText(data, size), 4);

  // Start from an empty root each time: the agent writes some files back
  // (runtime database names, caches), and what one input left must not
  // change how the next one loads.
  root->Clear("telephony");
  root->MakeDirs("telephony/extensiondb/user");
  root->Write("telephony/extensiondb/user/101.cfg", files[0]);
  root->Write("telephony/linedb", files[1]);
  root->Write("telephony/general.cfg", files[2]);
  root->Write("telephony/gateways.cfg", files[3]);
  root->Write("telephony/paths.cfg", kPaths);

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
  ReleaseTables(*agent);
  delete agent;
  return 0;
}
