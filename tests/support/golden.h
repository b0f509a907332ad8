#ifndef CMCFG_TESTS_SUPPORT_GOLDEN_H_
#define CMCFG_TESTS_SUPPORT_GOLDEN_H_

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace testing_support {

// The contents of tests/<relative> of the source tree ("" when missing).
inline std::string ReadSource(const std::string& relative) {
  std::ifstream in(std::string(CMCFG_SOURCE_DIR) + "/tests/" + relative, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Compares `actual`, with every `root` in it written as "<root>/", byte for
// byte with the golden file tests/<relative> of the source tree. After an
// intended change, run the test binary with CMCFG_REGEN_GOLDEN=1 to rewrite
// the files from what the code does now; their diff is what a reviewer
// then reads.
inline void ExpectGolden(const std::string& relative, std::string actual, const std::string& root = "") {
  for (size_t at; !root.empty() && (at = actual.find(root)) != std::string::npos;)
    actual.replace(at, root.size(), "<root>/");
  const std::string path = std::string(CMCFG_SOURCE_DIR) + "/tests/" + relative;
  if (std::getenv("CMCFG_REGEN_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << actual;
    return;
  }
  EXPECT_EQ(ReadSource(relative), actual) << path << " (CMCFG_REGEN_GOLDEN=1 rewrites it)";
}

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_GOLDEN_H_
