#include "tools/show.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <sstream>

#include "tests/support/temp_root.h"

namespace {

using cmcfg_tool::RunShow;
using cmcfg_tool::ShowOptions;

// The bundled example configuration of the source tree.
std::string Examples() { return CMCFG_EXAMPLES_DIR; }

class ShowTest : public ::testing::Test {
 protected:
  int Run(ShowOptions options) {
    out_.str("");
    err_.str("");
    return RunShow(options, out_, err_);
  }
  testing_support::TempRoot logs_;  // also keeps ORBA_PATH pointed away from /etc
  std::ostringstream out_, err_;
};

TEST_F(ShowTest, SummarisesTheExampleOffice) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  ASSERT_EQ(0, Run(options)) << err_.str();
  const std::string text = out_.str();
  for (const char* expected : {"Extension table: ", "Attendants: ", "System attendant: 100",
                               "General data:", "Call records: on", "External users in ",
                               "Auto-login phones: ", "Tones: 66", "DeviceTone_InsideDial"})
    EXPECT_NE(std::string::npos, text.find(expected)) << expected;
  EXPECT_TRUE(err_.str().empty());
  // Logging is on in the example: the log went where it was told.
  std::string log = logs_.Read("cmcfg.log");
  EXPECT_NE(std::string::npos, log.find("destoying all temporary instances"));
}

TEST_F(ShowTest, JsonHoldsTheSameTables) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  options.json = true;
  ASSERT_EQ(0, Run(options));
  nlohmann::json j = nlohmann::json::parse(out_.str());
  EXPECT_EQ(66u, j["tones"].size());
  EXPECT_EQ("100", j["system_attendant"]);
  EXPECT_GE(j["extensions"].size(), 12u);
  EXPECT_EQ(3u, j["external_users"]["users"].size());
}

TEST_F(ShowTest, MissingRootIsOneMessageAndStatusTwo) {
  ShowOptions options;
  options.root = logs_.Path("nowhere");
  EXPECT_EQ(2, Run(options));
  EXPECT_TRUE(out_.str().empty());
  const std::string err = err_.str();
  EXPECT_EQ(0u, err.find("cmcfg: cannot read the configuration root " + logs_.Path("nowhere/")));
  EXPECT_EQ(1, std::count(err.begin(), err.end(), '\n'));

  logs_.Write("file", "");
  options.root = logs_.Path("file");
  EXPECT_EQ(2, Run(options));
}

TEST(ResolveRoot, AddsTheSlashAndFallsBack) {
  EXPECT_EQ("/data/", cmcfg_tool::ResolveRoot("/data"));
  setenv("ORBA_PATH", "/from/env", 1);
  EXPECT_EQ("/from/env/", cmcfg_tool::ResolveRoot(""));
  unsetenv("ORBA_PATH");
  EXPECT_EQ("/etc/orba-conf/", cmcfg_tool::ResolveRoot(""));
}

}  // namespace
