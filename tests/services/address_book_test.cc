#include <gtest/gtest.h>

#include <string>

#include "platform/base/config_root.h"
#include "platform/extension/extension_manager.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLoggingOn[] = "section logging\n{\nlog_enabled = 1\n}\n";

const char kBook[] =
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 forward_unconditional\n{\nactive = 1\n"
    "destination_1 = 1,0,102\ndestination_2 = 0,0,103\n"
    "destination_3 = 1,1,sip:alice@mobile.example:5070\n}\n"
    "section contact 1 clir\n{\nactive = 1\n}\n"
    "section contact 2\n{\nname = 0900*\ncall_type = 2\n}\n"
    "section contact 2 incoming_blocking\n{\nactive = 1\nblock_mode = 3\n}\n"
    "section contact 3\n{\nname = 109\ncall_type = 0\n}\n"
    "section contact 4\n{\nname = 1234\ncall_type = 0\n}\n"
    "section contact 4 intercom\n{\nmode = 1\n}\n";

class AddressBookTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", kLoggingOn);
    root_.Write("telephony/extensiondb/user/101.cfg", kBook);
  }
  std::string Log() const { return root_.Read("cmcfg.log"); }

  static ExtensionData Record(const std::string& name) {
    ExtensionData record;
    record.name = name;
    record.type = kExtUser;
    return record;
  }

  static void ExpectBook(const ExtensionData& record) {
    ASSERT_EQ(4u, record.addressBook.size());
    auto it = record.addressBook.begin();
    // Numbers of call type 0 (the type of the first contact), the pattern,
    // then the PSTN contact.
    const AddressBookEntry& plain = *it++;
    EXPECT_EQ("109", plain.first.name);
    EXPECT_EQ(3, plain.first.id);
    EXPECT_EQ(2, plain.second.intercom.mode);  // nothing stored: an empty set
    EXPECT_FALSE(plain.second.IsArmed(true));

    const AddressBookEntry& intercom = *it++;
    EXPECT_EQ("1234", intercom.first.name);
    EXPECT_EQ(1, intercom.second.intercom.mode);

    const AddressBookEntry& any = *it++;
    EXPECT_EQ("*", any.first.name);
    EXPECT_EQ(1, any.first.id);
    EXPECT_EQ(kCallNumber, any.first.callType);
    EXPECT_EQ(1, any.second.clir.active);
    const ForwardData& forward = any.second.forwardUnconditional;
    EXPECT_EQ(1, forward.active);
    ASSERT_EQ(2u, forward.destinations.size());  // the disabled one dropped
    EXPECT_EQ("mobile.example", forward.destinations.back().host);

    const AddressBookEntry& pstn = *it++;
    EXPECT_EQ("0900*", pstn.first.name);
    EXPECT_EQ(2, pstn.first.id);
    EXPECT_EQ(kCallPstn, pstn.first.callType);
    EXPECT_EQ(1, pstn.second.incomingBlocking.active);
    EXPECT_EQ(3, pstn.second.incomingBlocking.blockMode);
  }
};

TEST_F(AddressBookTest, ContactsWithTheirServicesGrouped) {
  CMAgent& agent = Start();
  ExtensionData record = Record("101");
  ASSERT_TRUE(agent.LoadAddressBook(&record));
  ExpectBook(record);
  EXPECT_TRUE(record.IsForwardOn());
  EXPECT_NE(std::string::npos,
            Log().find("LoadAddressBook: extension 101, number of contacts = 4.\n"));

  // Loading again replaces the book rather than adding to it.
  ASSERT_TRUE(agent.LoadAddressBook(&record));
  EXPECT_EQ(4u, record.addressBook.size());
}

TEST_F(AddressBookTest, MissingExtension) {
  CMAgent& agent = Start();
  ExtensionData record = Record("999");
  record.addressBook.emplace_back(Contact("*", 1, kCallNumber), SupServiceSet());
  EXPECT_FALSE(agent.LoadAddressBook(&record));
  EXPECT_TRUE(record.addressBook.empty());
  EXPECT_FALSE(record.IsForwardOn());
  EXPECT_NE(std::string::npos, Log().find("LoadAddressBook: failed to load extension 999.\n"));
  EXPECT_FALSE(agent.LoadAddressBook(nullptr));
}

TEST_F(AddressBookTest, AfterDestroyTheFileIsReadForTheCall) {
  CMAgent& agent = Start();
  agent.Destroy();
  ExtensionData record = Record("101");
  ASSERT_TRUE(agent.LoadAddressBook(&record));
  ExpectBook(record);
  EXPECT_EQ(nullptr, agent.extensionManager);

  // The forward switched off in the file since: a fresh read sees it.
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
              "section contact 1 forward_unconditional\n{\nactive = 0\n}\n");
  ASSERT_TRUE(agent.LoadAddressBook(&record));
  ASSERT_EQ(1u, record.addressBook.size());
  EXPECT_FALSE(record.IsForwardOn());
}

// FillSupServiceSet on an extension fetched straight from the database,
// whose address book nobody has decoded yet.
class FillSupServiceSetTest : public AddressBookTest {
 protected:
  Extension* Stored() {
    manager_.reset(new ExtensionManager(cfg::TelephonyPath("extensiondb"), false));
    return manager_->GetExtension(kExtUser, "101", false);
  }
  std::unique_ptr<ExtensionManager> manager_;
};

TEST_F(FillSupServiceSetTest, OnlyTheServicesOfTheMask) {
  CMAgent& agent = Start();
  Extension* stored = Stored();
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
}

TEST_F(FillSupServiceSetTest, NothingStoredOrNoExtension) {
  CMAgent& agent = Start();
  Extension* stored = Stored();
  SupServiceSet set;
  set.clir.active = 7;
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, 3, gAllProperties));   // no services
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, 42, gAllProperties));  // no contact
  EXPECT_EQ(0, agent.FillSupServiceSet(stored, set, -1, gAllProperties));
  EXPECT_EQ(0, agent.FillSupServiceSet(nullptr, set, 1, gAllProperties));
  EXPECT_EQ(7, set.clir.active);
}

}  // namespace
