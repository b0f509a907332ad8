// md_to_roff IN.md OUT.1: turns a manual page of docs/man/, written in the
// small part of Markdown those pages use (a "# name(1)" title, "##"
// sections, paragraphs, "- " lists, fenced code and pipe tables), into
// roff for man(1), so that the pages are written once and read both ways.
#include <fstream>
#include <iostream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Inline Markdown to roff: code spans in bold, links as their text,
// backslashes escaped, and no line that starts with a control character.
std::string Inline(std::string text) {
  text = std::regex_replace(text, std::regex(R"(^\s+)"), "");
  text = std::regex_replace(text, std::regex(R"(\\\|)"), "|");
  text = std::regex_replace(text, std::regex(R"(\\)"), R"(\e)");
  text = std::regex_replace(text, std::regex(R"(\[([^\]]*)\]\([^)]*\))"), "$1");
  text = std::regex_replace(text, std::regex("`([^`]*)`"), R"(\fB$1\fR)");
  text = std::regex_replace(text, std::regex(R"(\*\*([^*]*)\*\*)"), R"(\fB$1\fR)");
  if (!text.empty() && (text[0] == '.' || text[0] == '\'')) text = "\\&" + text;
  return text;
}

std::vector<std::string> Cells(const std::string& row) {
  std::vector<std::string> cells;
  std::string cell;
  bool code = false;
  for (size_t i = 1; i < row.size(); ++i) {
    const char c = row[i];
    if (c == '`') code = !code;
    if (c == '|' && !code && row[i - 1] != '\\') {
      cells.push_back(std::regex_replace(cell, std::regex(R"(^\s+|\s+$)"), ""));
      cell.clear();
    } else {
      cell += c;
    }
  }
  return cells;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: md_to_roff IN.md OUT.1\n";
    return 2;
  }
  std::ifstream in(argv[1]);
  std::ostringstream out;
  std::string line;
  bool code = false, tableHeader = false;
  const std::regex title(R"(^# (\S+)\((\d)\)\s*$)");
  std::smatch match;
  while (std::getline(in, line)) {
    if (line.compare(0, 3, "```") == 0) {
      out << (code ? ".fi\n.RE\n" : ".RS 4\n.nf\n");
      code = !code;
    } else if (code) {
      out << (line.empty()     ? ""
              : line[0] == '.' ? "\\&"
                               : "")
          << std::regex_replace(line, std::regex(R"(\\)"), R"(\e)") << "\n";
    } else if (std::regex_match(line, match, title)) {
      std::string name = match[1];
      for (char& c : name) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
      out << ".TH " << name << " " << match[2] << "\n";
    } else if (line.compare(0, 3, "## ") == 0) {
      out << ".SH " << line.substr(3) << "\n";
    } else if (line.compare(0, 1, "|") == 0) {
      if (line.find("---") != std::string::npos) continue;
      const std::vector<std::string> cells = Cells(line);
      if (!tableHeader) {  // the header names the columns; the rows say enough
        tableHeader = true;
        continue;
      }
      out << ".TP\n" << Inline(cells.empty() ? "" : cells[0]) << "\n";
      for (size_t i = 1; i < cells.size(); ++i) out << Inline(cells[i]) << "\n";
      continue;
    } else if (line.compare(0, 2, "- ") == 0) {
      out << ".IP \\(bu 2\n" << Inline(line.substr(2)) << "\n";
    } else if (line.empty()) {
      out << ".PP\n";
    } else {
      out << Inline(line) << "\n";
    }
    tableHeader = false;
  }
  std::ofstream(argv[2]) << out.str();
  return out.str().empty() ? 1 : 0;
}
