#ifndef CMCFG_TOOLS_CHECK_KEYS_H_
#define CMCFG_TOOLS_CHECK_KEYS_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/key_rules.h"
#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// The rules of the section named `section` as the store reads it, or
// nullptr for a section it never reads.
using SectionLookup = std::function<const cfg::KeyRules*(std::string_view section)>;

// Checks the first section of each name of `file` against the store's
// rules: a section it never reads (warned with unreadMessage(name); not at
// all when that is "" or unreadMessage is empty), keys it does not read, and values it
// does not take (the first entry of a key only: the others are never
// read). Adds warnings to `findings`.
void CheckSectionKeys(const CheckedFile& file, const SectionLookup& lookup,
                      const std::function<std::string(const std::string&)>& unreadMessage,
                      Findings* findings);

// Checks the settings files (general.cfg, paths.cfg, fxs.cfg,
// log_login.cfg), the extension database's system.cfg, every extension and
// attendant file and the line database with CheckSectionKeys against the
// rules their readers publish. In extension files it also warns of a
// contact or speed-dial id that a second section repeats.
void CheckStoreKeys(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_KEYS_H_
