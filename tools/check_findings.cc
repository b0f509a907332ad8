#include "tools/check_findings.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace cmcfg_tool {

void PrintFindings(const Findings& findings, std::ostream& out) {
  for (const Finding& f : findings) {
    out << f.file;
    if (f.line != 0) out << ':' << f.line;
    out << ": " << (f.error ? "error" : "warning") << ": " << f.message << '\n';
    if (f.line == 0) continue;
    out << f.text << '\n' << std::string(f.column, ' ') << "^\n";
  }
}

void PrintFindingsJson(const Findings& findings, std::ostream& out) {
  nlohmann::json array = nlohmann::json::array();
  for (const Finding& f : findings) {
    array.push_back({{"file", f.file},
                     {"line", f.line},
                     {"column", f.column},
                     {"severity", f.error ? "error" : "warning"},
                     {"code", f.code},
                     {"message", f.message}});
  }
  // Replace: a file may hold bytes that are not UTF-8; the dump must not throw.
  out << array.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

int FindingsStatus(const Findings& findings) {
  for (const Finding& f : findings)
    if (f.error) return 1;
  return 0;
}

Finding FindingAt(const std::string& file, const std::vector<std::string>& lines, uint32_t line,
                  const std::string& value, bool error, const std::string& code,
                  const std::string& message) {
  Finding f;
  f.file = file;
  f.line = line;
  f.error = error;
  f.code = code;
  f.message = message;
  if (line >= 1 && line <= lines.size()) f.text = lines[line - 1];
  size_t separator = f.text.find('=');
  size_t from = separator == std::string::npos ? 0 : separator + 1;
  size_t at = value.empty() ? std::string::npos : f.text.find(value, from);
  if (at == std::string::npos) {
    at = f.text.find_first_not_of(" \t", from);
    if (at == std::string::npos) at = from < f.text.size() ? from : f.text.size();
  }
  f.column = static_cast<uint32_t>(at);
  return f;
}

}  // namespace cmcfg_tool
