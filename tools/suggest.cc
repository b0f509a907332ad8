#include "tools/suggest.h"

#include <algorithm>

namespace cmcfg_tool {
namespace {

size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (size_t i = 1; i <= a.size(); ++i)
    for (size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min(
          {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  return d[a.size()][b.size()];
}

}  // namespace

std::string Nearest(const std::string& word, const std::vector<std::string>& candidates) {
  std::string best;
  size_t bestDistance = 3;
  for (const std::string& candidate : candidates) {
    const size_t distance = Distance(word, candidate);
    if (distance < bestDistance && 2 * distance < word.size()) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

}  // namespace cmcfg_tool
