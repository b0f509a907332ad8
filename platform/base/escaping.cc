#include "platform/base/escaping.h"

namespace cfg {

namespace {

bool IsControl(unsigned char c) { return c < 0x20 || c == 0x7F; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Decodes the escape whose backslash is at inner[i]; returns its length, or
// 0 when it is not a valid escape.
size_t DecodeEscape(std::string_view inner, size_t i, std::string* out) {
  if (i + 1 >= inner.size()) return 0;
  switch (inner[i + 1]) {
    case '\\': out->push_back('\\'); return 2;
    case '"': out->push_back('"'); return 2;
    case 'n': out->push_back('\n'); return 2;
    case 'r': out->push_back('\r'); return 2;
    case 't': out->push_back('\t'); return 2;
    case 'x': {
      int hi = i + 2 < inner.size() ? HexDigit(inner[i + 2]) : -1;
      int lo = i + 3 < inner.size() ? HexDigit(inner[i + 3]) : -1;
      if (hi < 0 || lo < 0) return 0;
      out->push_back(static_cast<char>(hi * 16 + lo));
      return 4;
    }
    default:
      return 0;
  }
}

}  // namespace

bool NeedsQuoting(std::string_view value) {
  if (value.empty()) return false;
  if (IsBlank(value.front()) || IsBlank(value.back()) || value.front() == '"') return true;
  for (unsigned char c : value) {
    if (IsControl(c)) return true;
  }
  return false;
}

void AppendQuoted(std::string_view value, std::string* out) {
  static const char kHex[] = "0123456789ABCDEF";
  out->push_back('"');
  for (char ch : value) {
    unsigned char c = static_cast<unsigned char>(ch);
    switch (ch) {
      case '\\': out->append("\\\\"); break;
      case '"': out->append("\\\""); break;
      case '\n': out->append("\\n"); break;
      case '\r': out->append("\\r"); break;
      case '\t': out->append("\\t"); break;
      default:
        if (IsControl(c)) {
          out->append("\\x");
          out->push_back(kHex[c >> 4]);
          out->push_back(kHex[c & 0xF]);
        } else {
          out->push_back(ch);
        }
    }
  }
  out->push_back('"');
}

bool Unescape(std::string_view inner, std::string* out, size_t* bad_offset) {
  bool ok = true;
  out->clear();
  out->reserve(inner.size());
  for (size_t i = 0; i < inner.size();) {
    if (inner[i] != '\\') {
      out->push_back(inner[i++]);
      continue;
    }
    size_t used = DecodeEscape(inner, i, out);
    if (used == 0) {
      if (ok) *bad_offset = i;
      ok = false;
      out->push_back('\\');
      used = 1;
    }
    i += used;
  }
  return ok;
}

}  // namespace cfg
