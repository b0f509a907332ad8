#include "tools/check.h"

#include <ostream>

#include "tools/check_destinations.h"
#include "tools/check_extensions.h"
#include "tools/check_fields.h"
#include "tools/check_keys.h"
#include "tools/check_linedb.h"
#include "tools/check_pstn.h"
#include "tools/check_root_files.h"
#include "tools/check_service_codes.h"
#include "tools/check_syntax.h"
#include "tools/check_tones.h"
#include "tools/session.h"

namespace cmcfg_tool {

Findings FindProblems(const std::string& root) {
  Findings findings;
  const std::vector<CheckedFile> files = LoadRootFiles(root, &findings);
  CheckRootFiles(root, files, &findings);
  CheckExtensions(files, &findings);
  CheckDestinations(files, &findings);
  CheckBlockFiles(files, &findings);
  CheckStoreKeys(files, &findings);
  CheckLineDatabase(files, &findings);
  CheckPstnChannels(files, &findings);
  CheckServiceCodes(files, &findings);
  CheckTones(files, &findings);
  return findings;
}

int RunCheck(const Invocation& options, std::ostream& out, std::ostream& err) {
  cfg::ReadOnlyScope readOnly;  // a check looks; it never repairs
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return kUsage;
  const Findings findings = FindProblems(root);
  if (options.json)
    PrintFindingsJson(findings, out);
  else
    PrintFindings(findings, out);
  return FindingsStatus(findings);
}

}  // namespace cmcfg_tool
