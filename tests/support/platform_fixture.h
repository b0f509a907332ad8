// What the store layer's tests share: one fixture per test binary (a fresh
// configuration root, and every process-wide setting of the store put back
// afterwards), byte helpers and golden files.
#ifndef CMCFG_TESTS_SUPPORT_PLATFORM_FIXTURE_H_
#define CMCFG_TESTS_SUPPORT_PLATFORM_FIXTURE_H_

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "tests/support/golden.h"
#include "tests/support/temp_root.h"

namespace testing_support {

class PlatformTest : public ::testing::Test {
 protected:
  ~PlatformTest() override {
    cfg::FileSystem::SetDefaultForTesting(nullptr);
    cfg::SetLockTimeout(cfg::kDefaultLockTimeout);
    cfg::SetStoreReporter(nullptr);
    cfg::SetReadOnly(false);
  }
  TempRoot root_;
};

// A literal with the NUL bytes it holds.
template <size_t N>
std::string Bytes(const char (&text)[N]) {
  return std::string(text, N - 1);
}

// The text with control and non-ASCII bytes as \xHH (line breaks kept), so
// that golden files and failure messages stay readable.
inline std::string Shown(std::string_view text) {
  std::string out;
  for (unsigned char c : text) {
    if (c == '\n' || (c >= 0x20 && c < 0x7F)) {
      out.push_back(static_cast<char>(c));
    } else {
      char hex[8];
      std::snprintf(hex, sizeof(hex), "\\x%02X", c);
      out += hex;
    }
  }
  return out;
}

// Decodes \\, \n, \r, \t, \xHH and \e (nothing), so that a table row can
// hold any text, the empty one included.
inline std::string Unescaped(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out.push_back(text[i]);
      continue;
    }
    const char c = text[++i];
    if (c == 'x' && i + 2 < text.size()) {
      out.push_back(static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16)));
      i += 2;
    } else if (c != 'e') {  // \e: nothing, for an empty case
      out.push_back(c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c);
    }
  }
  return out;
}

// Cases kept as data: each line of tests/`table`.in but blank and "#"
// lines is one case (escaped as above), `answer` gives its outcome in one
// line, and tests/`table`.out holds "case -> outcome" for every case, byte
// for byte.
template <typename Answer>
void ExpectGoldenTable(const std::string& table, Answer answer) {
  std::istringstream in(ReadSource(table + ".in"));
  std::string out;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') out += line + " -> " + answer(Unescaped(line)) + "\n";
  EXPECT_FALSE(out.empty()) << table;
  ExpectGolden(table + ".out", out);
}

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_PLATFORM_FIXTURE_H_
