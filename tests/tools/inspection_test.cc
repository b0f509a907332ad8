#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_root.h"
#include "tests/support/tree_snapshot.h"
#include "tests/tools/tool_test_util.h"
#include "tools/cli.h"
#include "tools/session.h"

namespace {

using cmcfg_tool::Access;
using cmcfg_tool::AgentSession;
using cmcfg_tool::InspectionLogDir;
using cmcfg_tool::IsInside;
using testing_support::TempRoot;
using testing_support::TreeSnapshot;

// Puts an environment variable back as it was.
class SavedEnv {
 public:
  explicit SavedEnv(const char* name) : name_(name) {
    if (const char* value = getenv(name)) value_ = value, had_ = true;
  }
  ~SavedEnv() {
    if (had_)
      setenv(name_, value_.c_str(), 1);
    else
      unsetenv(name_);
  }

 private:
  const char* name_;
  std::string value_;
  bool had_ = false;
};

// The current directory for the object's lifetime.
class InFolder {
 public:
  explicit InFolder(const std::string& dir) {
    char here[PATH_MAX];
    if (getcwd(here, sizeof(here)) != nullptr) old_ = here;
    if (chdir(dir.c_str()) != 0) ADD_FAILURE() << "cannot enter " << dir;
  }
  ~InFolder() {
    if (!old_.empty() && chdir(old_.c_str()) != 0) ADD_FAILURE() << "cannot go back to " << old_;
  }

 private:
  std::string old_;
};

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// The example plus what a load writes back: a runtime database name that is
// missing (its default gets saved) and an external-user cache in the root
// with more users than allowed (it gets trimmed). Inspection runs from inside the root, where the
// log would land by default.
class InspectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const TempRoot* root : {&root_, &other_}) tool_testing::CopyExample(root->path());
    root_.Write("telephony/paths.cfg",
                "section paths\n{\nexternal_user_cache_file = " + Cache() +
                    "\ncdr_stated_db = CDR_db\ncdr_missed_db = missed_calls_db\n"
                    "cdr_failed_db = unsuccess_calls_db\n}\n");
    root_.Write("telephony/external_user_cache_db", root_.Read("telephony/externaluserdb"));
    root_.Write("telephony/general.cfg", Replaced(root_.Read("telephony/general.cfg"),
                                                  "max_external_users = 32",
                                                  "max_external_users = 1"));
    ASSERT_NE(std::string::npos,
              root_.Read("telephony/general.cfg").find("max_external_users = 1"));
    unsetenv("CMCFG_LOG_DIR");
    setenv("TMPDIR", logs_.path().c_str(), 1);
    inside_.reset(new InFolder(root_.Path("telephony")));
  }
  void TearDown() override { inside_.reset(); }

  std::string Cache() const { return root_.Path("telephony/external_user_cache_db"); }

  int Run(const std::vector<std::string>& args) {
    return tool_testing::RunCmcfg(args, out_, err_);
  }

  SavedEnv tmpdir_{"TMPDIR"};
  TempRoot logs_;
  TempRoot root_;
  TempRoot other_;  // saves and restores CMCFG_LOG_DIR, unset in SetUp
  std::unique_ptr<InFolder> inside_;
  std::ostringstream out_, err_;
};

TEST_F(InspectionTest, NoInspectionVerbChangesTheRoots) {
  const std::string root = root_.path(), other = other_.path();
  const struct {
    std::vector<std::string> args;
    int status;
    bool quiet = false;  // a clean check prints nothing
  } runs[] = {
      {{"show", "--root", root}, 0},
      {{"show", "--root", root, "--json"}, 0},
      {{"ext", "106", "--root", root}, 0},
      {{"ext", "100", "--root", root, "--json"}, 0},
      {{"dump", "--root", root}, 0},
      {{"check", "--root", root}, 0, true},
      {{"check", "--root", root, "--json"}, 0},
      {{"diff", root, other}, 1},  // the paths and the user limit differ
  };
  for (const auto& run : runs) {
    SCOPED_TRACE(run.args[0] + " " + run.args[1]);
    const TreeSnapshot before(root), beforeOther(other);
    EXPECT_EQ(run.status, Run(run.args)) << err_.str();
    EXPECT_EQ(run.quiet, out_.str().empty());
    EXPECT_EQ("", TreeSnapshot(root).DifferencesFrom(before));
    EXPECT_EQ("", TreeSnapshot(other).DifferencesFrom(beforeOther));
  }
}

// The tool shows what the agent would hold after its saves, though none
// happened: the defaulted names and the trimmed list.
TEST_F(InspectionTest, ShowsWhatTheLoadWouldHaveSaved) {
  ASSERT_EQ(0, Run({"show", "--root", root_.path()})) << err_.str();
  const std::string text = out_.str();
  EXPECT_NE(std::string::npos,
            text.find("registration status  " + root_.Path("telephony/reg_status_file") + "\n"))
      << text;
  EXPECT_NE(std::string::npos,
            text.find("External users in " + Cache() + ": 1\n"))
      << text;
  EXPECT_EQ(std::string::npos, root_.Read("telephony/paths.cfg").find("reg_status_file"));
}

// Without read-only mode the same load does write: the roots above are ones
// that a careless inspection would have changed.
TEST_F(InspectionTest, TheSameLoadForWritingChangesTheRoot) {
  const TreeSnapshot before(root_.path());
  { AgentSession session(root_.path(), logs_.path(), Access::kWriteBack); }
  const std::string changed = TreeSnapshot(root_.path()).DifferencesFrom(before);
  EXPECT_NE(std::string::npos, changed.find("telephony/paths.cfg: changed")) << changed;
  EXPECT_NE(std::string::npos, changed.find("telephony/external_user_cache_db: changed"))
      << changed;
  EXPECT_NE(std::string::npos, root_.Read("telephony/paths.cfg").find("reg_status_file"));
}

TEST_F(InspectionTest, LogLeavesTheRootForTheTemporaryFolderOrWhereItIsSent) {
  ASSERT_EQ(0, Run({"show", "--root", root_.path()})) << err_.str();
  EXPECT_NE(std::string::npos, logs_.Read("cmcfg.log").find("destoying all temporary"));
  TempRoot sent;
  unsetenv("CMCFG_LOG_DIR");
  ASSERT_EQ(0, Run({"ext", "106", "--root", root_.path(), "--log-dir", sent.path()}));
  EXPECT_NE(std::string::npos, sent.Read("cmcfg.log").find("destoying all temporary"));
}

TEST_F(InspectionTest, LogFolderOfAnInspection) {
  const std::string root = root_.path();
  EXPECT_EQ(logs_.path(), InspectionLogDir(root, ""));  // TMPDIR ends in "/"
  EXPECT_EQ("/var/log/", InspectionLogDir(root, "/var/log/"));
  setenv("TMPDIR", "/scratch", 1);
  EXPECT_EQ("/scratch/", InspectionLogDir(root, ""));
  unsetenv("TMPDIR");
  EXPECT_EQ("/tmp/", InspectionLogDir(root, ""));
  // Elsewhere the current directory, or the folder the environment names.
  EXPECT_EQ("", InspectionLogDir(other_.path(), ""));
  setenv("CMCFG_LOG_DIR", root_.Path("telephony").c_str(), 1);
  EXPECT_EQ("", InspectionLogDir(root, ""));
}

TEST_F(InspectionTest, InsideFollowsLinksAndWholeNames) {
  const std::string root = root_.path();
  EXPECT_TRUE(IsInside(".", root));
  EXPECT_TRUE(IsInside(root, root));
  EXPECT_TRUE(IsInside(root_.Path("telephony/extensiondb"), root_.Path("telephony")));
  EXPECT_FALSE(IsInside(root_.Path("telephony"), root_.Path("telephony/extensiondb")));
  // A sibling whose name starts with the root's is not inside it.
  root_.MakeDir("telephony2");
  EXPECT_FALSE(IsInside(root_.Path("telephony2"), root_.Path("telephony")));
  ASSERT_EQ(0, symlink(root_.Path("telephony").c_str(), logs_.Path("link").c_str()));
  EXPECT_TRUE(IsInside(".", logs_.Path("link")));
  EXPECT_FALSE(IsInside(".", root_.Path("missing")));
}

}  // namespace
