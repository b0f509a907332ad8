#ifndef CMCFG_TOOLS_UNIFIED_DIFF_H_
#define CMCFG_TOOLS_UNIFIED_DIFF_H_

#include <string>

namespace cmcfg_tool {

// The unified diff (three lines of context) that turns `before` into
// `after`, headed "--- a/NAME" and "+++ b/NAME"; "" when they are equal. A
// text without a final line break is marked as diff marks it.
std::string UnifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_UNIFIED_DIFF_H_
