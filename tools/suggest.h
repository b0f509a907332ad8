#ifndef CMCFG_TOOLS_SUGGEST_H_
#define CMCFG_TOOLS_SUGGEST_H_

#include <string>
#include <vector>

namespace cmcfg_tool {

// The candidate nearest to `word` by edit distance (insertions, deletions,
// substitutions and swaps of two neighbours), when it is at most 2 edits
// away and nearer than half the word; "" otherwise.
std::string Nearest(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SUGGEST_H_
