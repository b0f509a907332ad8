// StringUtils::ParseCommaLine: n separators give n + 1 untrimmed pieces,
// an empty line none, and joining the pieces gives the line back.
#include <algorithm>
#include <string>
#include <vector>

#include "platform/base/string_utils.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) {
    FUZZ_CHECK(StringUtils::ParseCommaLine("").empty());
    return 0;
  }
  // The first byte chooses the separator; the rest is the line.
  const char separator = static_cast<char>(data[0]);
  const std::string line(fuzz_support::AsText(data + 1, size - 1));
  for (char sep : {separator, ',', ';'}) {
    const std::vector<std::string> pieces = StringUtils::ParseCommaLine(line, sep);
    if (line.empty()) {
      FUZZ_CHECK(pieces.empty());
      continue;
    }
    FUZZ_CHECK(pieces.size() == static_cast<size_t>(std::count(line.begin(), line.end(), sep)) + 1);
    std::string joined;
    for (size_t i = 0; i < pieces.size(); ++i) {
      FUZZ_CHECK(pieces[i].find(sep) == std::string::npos);
      if (i > 0) joined.push_back(sep);
      joined += pieces[i];
    }
    FUZZ_CHECK(joined == line);
  }
  return 0;
}
