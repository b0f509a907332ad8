#ifndef CMCFG_TOOLS_CHECK_TONES_H_
#define CMCFG_TOOLS_CHECK_TONES_H_

#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks "telephony/regional/tonetypes.cfg": sections that name no tone
// (ignored), keys the tone reader does not read, numbers it would read as
// something else than written (it takes the leading number, 0 without
// one) and cadences that are not durations in ms. Adds warnings to
// `findings`.
void CheckTones(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_TONES_H_
