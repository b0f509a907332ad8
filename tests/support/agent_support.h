#ifndef CMCFG_TESTS_SUPPORT_AGENT_SUPPORT_H_
#define CMCFG_TESTS_SUPPORT_AGENT_SUPPORT_H_

// What tests, crash tests and fuzz targets that construct an agent share;
// free of the test framework, so the fuzz targets can use it too.

#include <cstddef>
#include <string>

#include "cmcfg/cm_agent.h"

namespace testing_support {

// A paths file ("telephony/paths.cfg") that names every runtime database,
// so that constructing an agent has no default name to save back: only the
// writes a test makes touch the files, and no save costs a disk flush.
inline constexpr char kAllRuntimePaths[] =
    "section paths\n{\nexternal_user_cache_file = external_user_cache_db\nreg_status_file = reg_status_file\n"
    "cdr_stated_db = CDR_db\ncdr_missed_db = missed_calls_db\ncdr_failed_db = unsuccess_calls_db\n}\n";

// Erases every record of the agent's tables: the agent leaves them to its
// caller, and the sanitizer runs count a forgotten one as a leak. Only the
// slots in use are visited: a table can have a million of them.
inline void ReleaseTables(CMAgent& agent) {
  for (size_t i = 0; i < agent.extensionBase.size(); ++i)
    if (agent.extensionBase[i] != nullptr) agent.EraseExtension(i, true, false);
  while (!agent.attendants.empty()) agent.EraseAttendant(agent.attendants.size() - 1);
}

// The loaded extension of that name, or nullptr.
inline ExtensionData* FindExtension(const CMAgent& agent, const std::string& name) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  return nullptr;
}

// An agent as the call manager runs it: constructed over the root, then
// Destroy, so every operation opens what it needs for its call.
struct RunningAgent {
  RunningAgent() { agent.Destroy(); }
  ~RunningAgent() { ReleaseTables(agent); }
  CMAgent agent;
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_AGENT_SUPPORT_H_
