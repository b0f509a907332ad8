// Changes written back to the store, each read back by a second agent over
// the same root: a change that lives only in memory is no change.
#include <gtest/gtest.h>

#include <memory>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_fixture.h"

namespace {

const char kUser[] =
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 forward_unconditional\n{\nactive = 0\n"
    "destination_1 = 1,0,300\ndestination_2 = 1,1,sip:desk@pbx.example\n}\n"
    "section contact 2\n{\nname = 55?1\ncall_type = 0\n}\n"
    "section contact 3\n{\nname = 5001\ncall_type = 0\n}\n"
    "section contact 3 clir\n{\nactive = 1\n}\n";

using testing_support::ReleaseTables;

class WriteBackTest : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\n");
    root_.Write("telephony/extensiondb/user/101.cfg", kUser);
  }
  void TearDown() override {
    if (second_) ReleaseTables(*second_);
    AgentTest::TearDown();
  }

  static ExtensionData* Find(CMAgent& agent, const std::string& name) {
    for (ExtensionData* e : agent.extensionBase)
      if (e != nullptr && e->name == name) return e;
    return nullptr;
  }
  ExtensionData* User() { return Find(*agent_, "101"); }
  // The user as a fresh agent reads it from the files.
  ExtensionData* Reread() {
    if (second_) ReleaseTables(*second_);
    second_.reset(new CMAgent);
    return Find(*second_, "101");
  }
  static std::vector<std::string> Names(const ExtensionData* e) {
    std::vector<std::string> names;
    for (const AddressBookEntry& entry : e->addressBook) names.push_back(entry.first.name);
    return names;
  }
  static const AddressBookEntry* Contact(const ExtensionData* e, const std::string& name,
                                         CallType type = kCallNumber) {
    for (const AddressBookEntry& entry : e->addressBook)
      if (entry.first.name == name && entry.first.callType == type) return &entry;
    return nullptr;
  }
  static std::vector<std::string> Forwards(const AddressBookEntry& entry) {
    std::vector<std::string> out;
    for (const ForwardParams& p : entry.second.forwardUnconditional.destinations)
      out.push_back(std::to_string(p.callType) + ":" + p.userName + (p.host.empty() ? "" : "@" + p.host));
    return out;
  }
  std::string File() const { return root_.Read("telephony/extensiondb/user/101.cfg"); }
  std::string Log() const { return root_.Read("cmcfg.log"); }

  std::unique_ptr<CMAgent> second_;
};

TEST_F(WriteBackTest, ForwardFromThePhoneTouchesOnlyItsOwnDestination) {
  CMAgent& agent = Start();
  agent.Destroy();
  ExtensionData* user = User();
  EXPECT_FALSE(agent.UpdateForwardService(user, "400", false, false));  // nothing to remove
  ASSERT_TRUE(agent.UpdateForwardService(user, "400", true, false));
  const std::vector<std::string> added = {"0:300", "1:desk@pbx.example", "3:400"};
  EXPECT_EQ(added, Forwards(*Contact(user, "*")));
  EXPECT_EQ(added, Forwards(*Contact(Reread(), "*")));

  // A different number replaces it only when asked to.
  EXPECT_FALSE(agent.UpdateForwardService(user, "401", true, false));
  ASSERT_TRUE(agent.UpdateForwardService(user, "401", true, true));
  EXPECT_EQ("3:401", Forwards(*Contact(Reread(), "*")).back());

  // The same number again stores nothing, even when the entry is disabled.
  std::string file = File();
  size_t at = file.find("destination_3 = 1,3,401");
  ASSERT_NE(std::string::npos, at);
  file.replace(at, 23, "destination_3 = 0,3,401");
  root_.Write("telephony/extensiondb/user/101.cfg", file);
  EXPECT_TRUE(agent.UpdateForwardService(user, "401", true, true));
  EXPECT_EQ(file, File());

  // Off deletes the entry (not just disables it); the others stay.
  ASSERT_TRUE(agent.UpdateForwardService(user, "401", false, false));
  EXPECT_EQ((std::vector<std::string>{"0:300", "1:desk@pbx.example"}),
            Forwards(*Contact(Reread(), "*")));
  EXPECT_EQ(std::string::npos, File().find(",3,"));
  EXPECT_EQ(nullptr, agent.extensionManager);
}

TEST_F(WriteBackTest, SwitchingForwardFollowsTheFlagInMemory) {
  CMAgent& agent = Start();
  ExtensionData* user = User();
  ASSERT_FALSE(user->IsForwardOn());
  ASSERT_TRUE(agent.SwitchForwardService(user));
  EXPECT_TRUE(user->IsForwardOn());
  EXPECT_TRUE(Reread()->IsForwardOn());
  ASSERT_TRUE(agent.SwitchForwardService(user));
  EXPECT_FALSE(Reread()->IsForwardOn());

  // Memory says off, the store says on (another writer): memory decides.
  agent.SwitchForwardService(Find(*second_, "101"));  // stored: on
  ASSERT_TRUE(agent.SwitchForwardService(user));
  EXPECT_TRUE(Reread()->IsForwardOn());

  ExtensionData stranger;
  stranger.name = "999";
  EXPECT_FALSE(agent.SwitchForwardService(&stranger));
  EXPECT_NE(std::string::npos, Log().find("SwitchForwardService: failed to load extension 999.\n"));
}

TEST_F(WriteBackTest, ForwardNeedsTheAnyCallerContact) {
  root_.Write("telephony/extensiondb/user/102.cfg", "section contact 4\n{\nname = 7\n}\n");
  CMAgent& agent = Start();
  ExtensionData* other = Find(agent, "102");
  EXPECT_FALSE(agent.SwitchForwardService(other));
  EXPECT_FALSE(agent.UpdateForwardService(other, "1", true, true));
  EXPECT_NE(std::string::npos,
            Log().find("UpdateForwardService: failed to load supplementary services for extension 102.\n"));
}

TEST_F(WriteBackTest, BlockingAddsAContactOnceAndStoresIt) {
  CMAgent& agent = Start();
  ExtensionData* user = User();
  EXPECT_EQ(0, agent.BlockContact(user, "5001", kCallNumber, true));  // existing contact
  const std::string once = File();
  EXPECT_EQ(1, agent.BlockContact(user, "5001", kCallNumber, true));
  EXPECT_EQ(once, File());  // already blocked: nothing stored

  EXPECT_EQ(0, agent.BlockContact(user, "5001", kCallSip, false));  // another type: a new contact
  EXPECT_EQ(0, agent.BlockContact(user, "6000", kCallNumber, false));
  ExtensionData* back = Reread();
  EXPECT_TRUE(Contact(back, "5001")->second.incomingBlocking.active);
  EXPECT_EQ(1, Contact(back, "5001")->second.clir.active);  // its other services survive
  EXPECT_TRUE(Contact(back, "5001", kCallSip)->second.outgoingBlocking.active);
  EXPECT_FALSE(Contact(back, "5001", kCallSip)->second.incomingBlocking.active);
  EXPECT_TRUE(Contact(back, "6000")->second.outgoingBlocking.active);
  EXPECT_EQ(Names(back).size(), Names(user).size());
  EXPECT_NE(std::string::npos, Log().find("BlockContact: extension 101, added contact 6000 to outgoing black list.\n"));
}

TEST_F(WriteBackTest, ContactUpdatesFollowTheListUntilAnUnknownId) {
  CMAgent& agent = Start();
  ExtensionData* user = User();
  // Plain numbers first, then patterns from the most specific; "*" last.
  EXPECT_EQ((std::vector<std::string>{"5001", "55?1", "*"}), Names(user));

  // The web configuration adds contacts 7 and 8 and renames 3.
  std::string file = File() +
                     "section contact 7\n{\nname = 7001\n}\n"
                     "section contact 7 clir\n{\nactive = 1\n}\n"
                     "section contact 8\n{\nname = 8001\n}\n";
  file.replace(file.find("name = 5001"), 11, "name = 5?01");
  root_.Write("telephony/extensiondb/user/101.cfg", file);

  // A change refreshes the name but not the services; an add regroups.
  EXPECT_EQ(0, agent.UpdateContact(user, "3,7,99,8", UpdateTypeCodes::kModeChange));
  EXPECT_EQ((std::vector<std::string>{"7001", "55?1", "5?01", "*"}), Names(user));
  EXPECT_EQ(1, Contact(user, "5?01")->second.clir.active);
  EXPECT_EQ(1, Contact(user, "7001")->second.clir.active);
  EXPECT_EQ(nullptr, Contact(user, "8001"));  // after the unknown id: not processed
  EXPECT_NE(std::string::npos, Log().find("UpdateContact: extension 101 has no such contact ID - 99.\n"));

  // An erase does not regroup.
  EXPECT_EQ(1, agent.UpdateContact(user, "8", UpdateTypeCodes::kModeAdd));
  EXPECT_EQ(1, agent.UpdateContact(user, "1", UpdateTypeCodes::kModeErase));
  EXPECT_EQ((std::vector<std::string>{"7001", "8001", "55?1", "5?01"}), Names(user));
  EXPECT_EQ(0, agent.UpdateContact(user, "1", UpdateTypeCodes::kModeErase));
}

TEST_F(WriteBackTest, ServiceRefreshReadsOnlyTheChosenService) {
  CMAgent& agent = Start();
  ExtensionData* user = User();
  std::string file = File();
  file.replace(file.find("active = 1"), 10, "active = 0");  // contact 3's CLIR
  file += "section contact 3 forward_busy\n{\nactive = 1\ndestination_1 = 1,0,222\n}\n";
  root_.Write("telephony/extensiondb/user/101.cfg", file);

  ASSERT_TRUE(agent.UpdateSupServices(user, 3, UpdateTypeCodes::kUpdateForwardBusy));
  const SupServiceSet& set = Contact(user, "5001")->second;
  EXPECT_EQ(1, set.forwardBusy.active);
  EXPECT_EQ(1, set.clir.active);  // not chosen: as it was
  ASSERT_TRUE(agent.UpdateSupServices(user, 3, static_cast<UpdateTypeCodes::UpdateType>(0)));
  EXPECT_EQ(0, Contact(user, "5001")->second.clir.active);
  EXPECT_FALSE(agent.UpdateSupServices(user, 42, UpdateTypeCodes::kUpdateClir));
  const std::string log = Log();
  EXPECT_NE(std::string::npos, log.find("UpdateSupServices: extension 101, updating busy forward data.\n"));
  EXPECT_NE(std::string::npos, log.find("UpdateSupServices: extension 101, updating all services.\n"));
  EXPECT_NE(std::string::npos, log.find("UpdateSupServices: extension 101 has no contact with ID 42.\n"));
}

TEST_F(WriteBackTest, PortMovesFromOneExtensionToAnother) {
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = local\ntype = 0\n}\n"
                                        "section 2\n{\nname = far\ntype = 2\n}\n");
  root_.Write("telephony/linedb", "section binding 1/3\n{\nextension = 101\npresentation_id = 3\n}\n"
                                  "section fxs 1/3\n{\n}\n");
  root_.Write("telephony/extensiondb/user/102.cfg", "");
  CMAgent& agent = Start();
  ASSERT_EQ(3u, User()->line.lineId);
  User()->line.callQueue.size = 5;

  root_.Write("telephony/linedb", "section binding 1/3\n{\nextension = 102\npresentation_id = 9\n}\n");
  ASSERT_TRUE(agent.UpdateFxsData(1, 3));
  EXPECT_EQ(1u, Find(agent, "102")->line.gatewayId);
  EXPECT_EQ(3u, Find(agent, "102")->line.lineId);
  EXPECT_EQ(9u, Find(agent, "102")->line.presentationId);
  EXPECT_EQ(INACTIVE_PARTY, User()->line.lineId);
  EXPECT_EQ(INACTIVE_PARTY, User()->line.gatewayId);
  EXPECT_EQ(0, User()->line.callQueue.size);
  EXPECT_EQ(1, User()->line.lineFlag);

  EXPECT_TRUE(agent.UpdateFxsData(2, 1));   // a remote port: nothing to do
  EXPECT_FALSE(agent.UpdateFxsData(1, 4));  // no such port
  EXPECT_FALSE(agent.UpdateFxsData(7, 1));  // no such gateway
  EXPECT_NE(std::string::npos, Log().find("UpdateFxsData: failed to load data for FXS MG{7}<1>.\n"));
}

}  // namespace
