#include "platform/base/string_utils.h"

std::vector<std::string> StringUtils::ParseCommaLine(const std::string& line, char separator) {
  std::vector<std::string> pieces;
  if (line.empty()) return pieces;
  size_t start = 0;
  for (;;) {
    size_t end = line.find(separator, start);
    if (end == std::string::npos) {
      pieces.push_back(line.substr(start));
      return pieces;
    }
    pieces.push_back(line.substr(start, end - start));
    start = end + 1;
  }
}
