#include "tools/check.h"

#include <ostream>
#include <set>

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
  const std::vector<CheckedFile> settings = LoadSettingsFiles(root, &findings);
  const std::vector<std::string> extensionFiles = ListExtensionFiles(root, &findings);
  CheckRootFiles(root, extensionFiles, &findings);
  const std::set<std::string> names = ExtensionNames(extensionFiles);
  const std::set<std::string> fax = FaxEncodings(settings);
  AgentParsers parsers;
  CheckDestinations(settings, names, &findings);
  CheckBlockFiles(settings, &findings);
  CheckStoreKeys(settings, &findings);
  CheckLineDatabase(settings, &findings);
  CheckTones(settings, &findings);
  // One extension file at a time: a root of many users is never held whole.
  for (const std::string& relative : extensionFiles) {
    std::vector<CheckedFile> one;
    if (!LoadFile(root, relative, &findings, &one)) continue;
    CheckExtensions(one, fax, &findings);
    CheckDestinations(one, names, &findings);
    CheckStoreKeys(one, &findings);
    CheckPstnChannels(one, parsers, &findings);
    CheckServiceCodes(one, parsers, &findings);
  }
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
