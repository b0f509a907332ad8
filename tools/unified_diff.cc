#include "tools/unified_diff.h"

#include <algorithm>
#include <vector>

namespace cmcfg_tool {
namespace {

constexpr size_t kContext = 3;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t from = 0;
  while (from < text.size()) {
    size_t nl = text.find('\n', from);
    if (nl == std::string::npos) {
      lines.push_back(text.substr(from) + "\n\\ No newline at end of file");
      break;
    }
    lines.push_back(text.substr(from, nl - from));
    from = nl + 1;
  }
  return lines;
}

// One line of the edit script: ' ' kept, '-' removed, '+' added, with its
// line numbers in both texts (0-based, the next line's where it has none).
struct Edit {
  char op;
  size_t a;
  size_t b;
};

// The shortest edit script by longest common subsequence; the common
// prefix and suffix are skipped first, as a save changes few lines.
std::vector<Edit> Script(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  size_t head = 0;
  while (head < a.size() && head < b.size() && a[head] == b[head]) ++head;
  size_t tail = 0;
  while (tail < a.size() - head && tail < b.size() - head &&
         a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
    ++tail;
  const size_t n = a.size() - head - tail, m = b.size() - head - tail;
  std::vector<std::vector<size_t>> lcs(n + 1, std::vector<size_t>(m + 1, 0));
  for (size_t i = n; i-- > 0;)
    for (size_t j = m; j-- > 0;)
      lcs[i][j] = a[head + i] == b[head + j] ? lcs[i + 1][j + 1] + 1
                                             : std::max(lcs[i + 1][j], lcs[i][j + 1]);
  std::vector<Edit> edits;
  for (size_t k = 0; k < head; ++k) edits.push_back({' ', k, k});
  size_t i = 0, j = 0;
  while (i < n || j < m) {
    if (i < n && j < m && a[head + i] == b[head + j]) {
      edits.push_back({' ', head + i++, head + j++});
    } else if (i < n && (j == m || lcs[i + 1][j] >= lcs[i][j + 1])) {
      edits.push_back({'-', head + i++, head + j});  // removals first, as diff shows them
    } else {
      edits.push_back({'+', head + i, head + j++});
    }
  }
  for (size_t k = 0; k < tail; ++k) edits.push_back({' ', head + n + k, head + m + k});
  return edits;
}

std::string Range(size_t start, size_t count) {
  // diff numbers from 1, and names the line before an empty range.
  return std::to_string(count == 0 ? start : start + 1) + "," + std::to_string(count);
}

}  // namespace

std::string UnifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after) {
  if (before == after) return "";
  const std::vector<std::string> a = SplitLines(before), b = SplitLines(after);
  const std::vector<Edit> edits = Script(a, b);
  std::string out = "--- a/" + name + "\n+++ b/" + name + "\n";
  size_t k = 0;
  while (k < edits.size()) {
    while (k < edits.size() && edits[k].op == ' ') ++k;
    if (k == edits.size()) break;
    // A hunk: context before, changes joined while their gap is short.
    size_t start = k >= kContext ? k - kContext : 0, end = k;
    for (size_t gap = 0; end < edits.size() && gap <= 2 * kContext; ++end)
      gap = edits[end].op == ' ' ? gap + 1 : 0;
    while (end > k && edits[end - 1].op == ' ') --end;
    end = std::min(edits.size(), end + kContext);
    size_t countA = 0, countB = 0;
    for (size_t e = start; e < end; ++e) {
      countA += edits[e].op != '+';
      countB += edits[e].op != '-';
    }
    out += "@@ -" + Range(edits[start].a, countA) + " +" + Range(edits[start].b, countB) + " @@\n";
    for (size_t e = start; e < end; ++e)
      out +=
          std::string(1, edits[e].op) + (edits[e].op == '+' ? b[edits[e].b] : a[edits[e].a]) + "\n";
    k = end;
  }
  return out;
}

}  // namespace cmcfg_tool
