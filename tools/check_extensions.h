#ifndef CMCFG_TOOLS_CHECK_EXTENSIONS_H_
#define CMCFG_TOOLS_CHECK_EXTENSIONS_H_

#include <set>
#include <string>
#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks the extension and attendant files among `files` for what the agent
// skips silently: codec names it does not know (fax lists may also name a
// section of "telephony/fax.cfg"), and in user extensions speed-dial
// sections without a number and codes that are not "#" and two digits. Adds warnings to `findings`.
// `fax` holds the fax encodings (FaxEncodings).
void CheckExtensions(const std::vector<CheckedFile>& files, const std::set<std::string>& fax,
                     Findings* findings);

// The fax encodings a fax list may name: the section names of
// telephony/fax.cfg among `files`, matched exactly as the lists match them.
std::set<std::string> FaxEncodings(const std::vector<CheckedFile>& files);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_EXTENSIONS_H_
