// Start-up over a root holding things that are not configuration files, and
// names and links that point out of the root: none hangs the agent, none is
// read or written, and the rest of the table loads.
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_fixture.h"

namespace {

const char kUser[] =
    "section extension\n{\ndescription = inside\n}\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n";
// What a link or name out of the root would reach.
const char kOutsideUser[] =
    "section extension\n{\ndescription = outside\n}\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 3\n{\nname = 5001\ncall_type = 0\n}\n";

class ContainmentTest : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    setenv("ORBA_PATH", root_.path().c_str(), 1);  // outside_ pointed it at itself
    outside_.Write("secret.cfg", kOutsideUser);
    outside_.Write("users/999.cfg", kOutsideUser);
    root_.Write("telephony/extensiondb/user/101.cfg", kUser);
  }
  std::string User(const std::string& name) const {
    return "telephony/extensiondb/user/" + name + ".cfg";
  }
  void Link(const std::string& target, const std::string& relative) {
    ASSERT_EQ(0, symlink(target.c_str(), root_.Path(relative).c_str())) << relative;
  }
  static const ExtensionData* Find(const CMAgent& agent, const std::string& name) {
    for (const ExtensionData* e : agent.extensionBase)
      if (e != nullptr && e->name == name) return e;
    return nullptr;
  }
  static size_t Loaded(const CMAgent& agent) {
    size_t n = 0;
    for (const ExtensionData* e : agent.extensionBase) n += e != nullptr;
    return n;
  }
  // Nothing that was read outside the root made it into the agent.
  static void ExpectNothingFromOutside(const CMAgent& agent) {
    for (const ExtensionData* e : agent.extensionBase) {
      if (e == nullptr) continue;
      EXPECT_NE("outside", e->description) << e->name;
    }
  }
  void ExpectOutsideUnchanged() const {
    EXPECT_EQ(kOutsideUser, outside_.Read("secret.cfg"));
    EXPECT_EQ(kOutsideUser, outside_.Read("users/999.cfg"));
    EXPECT_FALSE(outside_.Exists("secret.cfg.lock"));
  }

  // Made after root_ (the fixture's) and destroyed before it: root_'s
  // setting of the configuration root is restored when it goes.
  testing_support::TempRoot outside_;
};

TEST_F(ContainmentTest, FifoAndLinkLoopsDoNotStopTheStartUp) {
  // A FIFO without a writer would block a plain open for ever.
  ASSERT_EQ(0, mkfifo(root_.Path("telephony/general.cfg").c_str(), 0644));
  ASSERT_EQ(0, mkfifo(root_.Path(User("102")).c_str(), 0644));
  Link(root_.Path("telephony/fxs.cfg"), "telephony/fxs.cfg");
  Link(root_.Path(User("104")), User("103"));
  Link(root_.Path(User("103")), User("104"));
  root_.MakeDir("telephony/regional");
  Link("/dev/zero", "telephony/regional/tonetypes.cfg");
  CMAgent& agent = Start();
  EXPECT_EQ(1u, Loaded(agent));
  ASSERT_NE(nullptr, Find(agent, "101"));
  EXPECT_EQ("inside", Find(agent, "101")->description);
  // Asked for by name, they are absent as well.
  EXPECT_EQ(0, agent.LoadExtensionDB("102", kExtUser));
  EXPECT_EQ(0, agent.LoadExtensionDB("103", kExtUser));
  EXPECT_EQ(1u, Loaded(agent));
  const size_t slots = agent.extensionBase.size();
  // The settings read as if the FIFO were no file at all.
  ASSERT_EQ(0, unlink(root_.Path("telephony/general.cfg").c_str()));
  EXPECT_EQ(slots, Start().extensionBase.size());
}

TEST_F(ContainmentTest, ExtensionLinkedOutOfTheRootIsNotLoaded) {
  Link(outside_.Path("secret.cfg"), User("105"));
  Link(outside_.Path("users"), "telephony/extensiondb/pickup");
  root_.Write(User("106"), kUser);
  Link(root_.Path(User("106")), User("107"));  // inside: loaded like any other
  CMAgent& agent = Start();
  EXPECT_EQ(nullptr, Find(agent, "105"));
  EXPECT_EQ(nullptr, Find(agent, "999"));
  EXPECT_NE(nullptr, Find(agent, "101"));
  EXPECT_NE(nullptr, Find(agent, "106"));
  ASSERT_NE(nullptr, Find(agent, "107"));
  EXPECT_EQ("inside", Find(agent, "107")->description);
  EXPECT_EQ(0, agent.LoadExtensionDB("105", kExtUser));
  ExpectNothingFromOutside(agent);
  ExpectOutsideUnchanged();
}

TEST_F(ContainmentTest, NamesCannotReachOutOfTheRoot) {
  CMAgent& agent = Start();
  const std::string up = "../../../../" + outside_.path().substr(1);
  const std::string names[] = {
      up + "secret",
      outside_.Path("secret"),
      "../" + std::string("101"),
      "101/../../../../" + outside_.path().substr(1) + "secret",
      std::string("101\0/../../x", 12),
      "101\n",
      ".",
      "..",
  };
  for (const std::string& name : names) {
    for (ExtType type : {kExtUser, kExtAttendant, kExtPickup})
      EXPECT_EQ(0, agent.LoadExtensionDB(name, type)) << name;
  }
  EXPECT_EQ(1u, Loaded(agent));
  ExpectNothingFromOutside(agent);

  // A record whose name would lead outside writes nothing there.
  ExtensionData record;
  record.name = up + "secret";
  EXPECT_EQ(2, agent.BlockContact(&record, "5001", kCallNumber, true));
  EXPECT_FALSE(agent.SwitchForwardService(&record));
  EXPECT_FALSE(agent.UpdateForwardService(&record, "777", true, true));
  ExpectOutsideUnchanged();
}

}  // namespace
