// The per-extension service queries the call manager makes after start-up:
// the functional table, the speed-dial list and the address book. What
// they decode is pinned by the root cases of the tool's golden tests; here,
// how each call fails and how it reads after Destroy.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/base/config_root.h"
#include "platform/extension/extension_manager.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

struct Query {
  const char* name;
  const char* failure;  // what is logged for a missing extension
  std::function<bool(CMAgent&, ExtensionData*)> call;
  std::function<size_t(const ExtensionData&)> size;
  std::function<void(ExtensionData&)> seed;  // a stale entry the call must drop
};

const Query kQueries[] = {
    {"GetFunctionalTable", "GetFunctionalTable: failed to load user extension 999.\n",
     [](CMAgent& a, ExtensionData* e) { return a.GetFuntionalTable(e); },
     [](const ExtensionData& e) { return e.functionalTable.size(); },
     [](ExtensionData& e) { e.functionalTable.emplace_back(KeySequence{0x101}, 0x801); }},
    {"GetSpeedDialList", "GetSpeedDialList: failed to load extension 999.\n",
     [](CMAgent& a, ExtensionData* e) { return a.GetSpeedDialList(e); },
     [](const ExtensionData& e) { return e.speedDial.size(); },
     [](ExtensionData& e) { e.speedDial.emplace_back(KeySequence{0x123}, ForwardParams()); }},
    {"LoadAddressBook", "LoadAddressBook: failed to load extension 999.\n",
     [](CMAgent& a, ExtensionData* e) { return a.LoadAddressBook(e); },
     [](const ExtensionData& e) { return e.addressBook.size(); },
     [](ExtensionData& e) {
       e.addressBook.emplace_back(Contact("*", 9, kCallNumber), SupServiceSet());
     }},
};

void PrintTo(const Query& query, std::ostream* out) { *out << query.name; }

// One code, one speed dial and one contact; "more" doubles each.
std::string UserFile(bool more) {
  std::string text = "section service_codes\n{\ncode_1 = *72\n";
  if (more) text += "code_2 = *73\n";
  text += "}\nsection speed_dial 1\n{\ncalling_code = #01\ndest_type = 0\ndestination = 105\n}\n";
  if (more) text += "section speed_dial 2\n{\ncalling_code = #02\ndest_type = 0\ndestination = 106\n}\n";
  text += "section contact 1\n{\nname = *\ncall_type = 0\n}\n";
  if (more) text += "section contact 2\n{\nname = 109\ncall_type = 0\n}\n";
  return text;
}

class ServiceQueryTest : public AgentTest, public ::testing::WithParamInterface<Query> {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\n");
    root_.Write("telephony/extensiondb/user/101.cfg", UserFile(false));
    root_.Write("telephony/extensiondb/pickup/300.cfg", UserFile(true));
  }
  ExtensionData Seeded(const std::string& name, ExtType type) {
    ExtensionData record;
    record.name = name;
    record.type = type;
    GetParam().seed(record);
    return record;
  }
  bool Logged(const std::string& line) const {
    return root_.Read("cmcfg.log").find(line) != std::string::npos;
  }
};

TEST_P(ServiceQueryTest, AMissingExtensionFailsEmptiesTheListAndIsLogged) {
  CMAgent& agent = Start();
  ExtensionData missing = Seeded("999", kExtUser);
  EXPECT_FALSE(GetParam().call(agent, &missing));
  EXPECT_EQ(0u, GetParam().size(missing));
  EXPECT_TRUE(Logged(GetParam().failure));
  EXPECT_FALSE(GetParam().call(agent, nullptr));
}

TEST_P(ServiceQueryTest, AfterDestroyEachCallReadsTheFileAsItIsNow) {
  CMAgent& agent = Start();
  agent.Destroy();
  ExtensionData record = Seeded("101", kExtUser);
  ASSERT_TRUE(GetParam().call(agent, &record));
  EXPECT_EQ(1u, GetParam().size(record));  // the stale entry replaced
  root_.Write("telephony/extensiondb/user/101.cfg", UserFile(true));
  ASSERT_TRUE(GetParam().call(agent, &record));
  EXPECT_EQ(2u, GetParam().size(record));
  EXPECT_EQ(nullptr, agent.extensionManager);
}

INSTANTIATE_TEST_SUITE_P(Queries, ServiceQueryTest, ::testing::ValuesIn(kQueries),
                         [](const ::testing::TestParamInfo<Query>& info) {
                           return std::string(info.param.name);
                         });

// Only users have a functional table and a speed-dial list, silently.
TEST_F(AgentTest, OtherKindsHaveNoFunctionalTableOrSpeedDials) {
  root_.Write("telephony/extensiondb/pickup/300.cfg", UserFile(true));
  CMAgent& agent = Start();
  for (const Query& query : {kQueries[0], kQueries[1]}) {
    ExtensionData pickup;
    pickup.name = "300";
    pickup.type = kExtPickup;
    query.seed(pickup);
    EXPECT_FALSE(query.call(agent, &pickup)) << query.name;
    EXPECT_EQ(0u, query.size(pickup)) << query.name;
  }
}

TEST_F(AgentTest, KeySequencesOfDigitsStarPoundAndFlash) {
  CMAgent& agent = Start();
  const std::pair<const char*, KeySequence> cases[] = {
      {"*72", {0x12A, 0x107, 0x102}}, {"#9f", {0x123, 0x109, 0x8F0}},
      {"0 F+x5", {0x100, 0x105}},  // others skipped
      {"F", {}}, {"", {}},
  };
  for (const auto& [text, expected] : cases) {
    KeySequence keys;
    std::string given = text;
    EXPECT_TRUE(agent.FormKeySequence(keys, given));
    EXPECT_EQ(expected, keys) << text;
  }
  KeySequence keys{0x8F0};  // appended to, not cleared
  std::string one = "1";
  agent.FormKeySequence(keys, one);
  EXPECT_EQ((KeySequence{0x8F0, 0x101}), keys);
}

// FillSupServiceSet on an extension fetched straight from the database,
// whose address book nobody has decoded yet.
TEST_F(AgentTest, FillSupServiceSetAssignsOnlyTheServicesOfTheMask) {
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
              "section contact 1 forward_unconditional\n{\nactive = 1\n"
              "destination_1 = 1,0,102\ndestination_2 = 1,1,sip:alice@mobile.example:5070\n}\n"
              "section contact 1 clir\n{\nactive = 1\n}\n"
              "section contact 3\n{\nname = 109\ncall_type = 0\n}\n");
  CMAgent& agent = Start();
  ExtensionManager manager(cfg::TelephonyPath("extensiondb"), false);
  Extension* stored = manager.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, stored);
  SupServiceSet set;
  set.clir.active = 7;
  set.incomingBlocking.active = 7;
  EXPECT_NE(0, agent.FillSupServiceSet(stored, set, 1, 0x040 | 0x002));
  EXPECT_EQ(1, set.forwardUnconditional.active);
  EXPECT_EQ(2u, set.forwardUnconditional.destinations.size());
  EXPECT_EQ(0, set.incomingBlocking.active);  // selected: assigned, off for contact 1
  EXPECT_EQ(7, set.clir.active);              // not selected: untouched
  EXPECT_NE(0, agent.FillSupServiceSet(stored, set, 1, gAllProperties));
  EXPECT_EQ(1, set.clir.active);

  set.clir.active = 7;
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, 3, gAllProperties));   // no services
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, 42, gAllProperties));  // no contact
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, -1, gAllProperties));
  EXPECT_EQ(0, agent.FillSupServiceSet(nullptr, set, 1, gAllProperties));
  EXPECT_EQ(7, set.clir.active);
}

}  // namespace
