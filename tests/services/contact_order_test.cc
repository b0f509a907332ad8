#include <gtest/gtest.h>

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "services/contact_order.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

class ContactOrderTest : public AgentTest {
 protected:
  // Each entry carries its id in the CLIR flag too, to show that the
  // services travel with their contact.
  static AddressBookEntry Entry(const std::string& name, int id, CallType type) {
    SupServiceSet services;
    services.clir.active = id;
    return AddressBookEntry(Contact(name, id, type), services);
  }
  static std::vector<int> Ids(const std::list<AddressBookEntry>& book) {
    std::vector<int> ids;
    for (const AddressBookEntry& entry : book) {
      EXPECT_EQ(entry.first.id, entry.second.clir.active);
      ids.push_back(entry.first.id);
    }
    return ids;
  }
};

TEST_F(ContactOrderTest, WildcardsUnlessEscaped) {
  CMAgent& agent = Start();
  for (const char* name : {"?", "12*", "\\?1?", "*", "1\\*2?"}) {
    EXPECT_TRUE(agent.IsWildCardExist(name)) << name;
  }
  for (const char* name : {"\\?12", "12\\*", "", "1234", "\\*\\?"}) {
    EXPECT_FALSE(agent.IsWildCardExist(name)) << name;
  }
}

TEST(ContactNameOrder, RewritesBothNamesAndComparesDescending) {
  std::string a = "12?4", b = "12*";
  EXPECT_TRUE(__cmp_contact_name(a, b));  // "12.4" > "12*"
  EXPECT_EQ("12.4", a);
  EXPECT_EQ("12*", b);

  // An escaped '?' keeps the '?' and the character after it is not looked
  // at: here the second '?' stays as it is.
  a = "\\??5?";
  b = "1?";
  EXPECT_TRUE(__cmp_contact_name(a, b));
  EXPECT_EQ("??5.", a);
  EXPECT_EQ("1.", b);

  a = "123";
  b = "12?";
  EXPECT_TRUE(__cmp_contact_name(a, b));  // a digit before a '?' position
  a = "1?";
  b = "1?";
  EXPECT_FALSE(__cmp_contact_name(a, b));
}

TEST_F(ContactOrderTest, GroupsByCallTypeNumbersFirstThenPatternsMostSpecificFirst) {
  CMAgent& agent = Start();
  std::list<AddressBookEntry> book = {
      Entry("12*", 1, kCallNumber),  Entry("1234", 2, kCallNumber),
      Entry("5*", 3, kCallPstn),     Entry("12?4", 4, kCallNumber),
      Entry("999", 5, kCallPstn),    Entry("100", 6, kCallNumber),
      Entry("1?", 7, kCallNumber),   Entry("5*", 8, kCallPstn),
      Entry("sip", 9, kCallSip),     Entry("\\*", 10, kCallNumber),
  };
  agent.GroupAddressBook(book);
  // Number contacts: 1234, 100, \* (escaped: a plain name), then 12?4 (as
  // 12.4), 12*, 1?; then the PSTN contacts, equal patterns in their order;
  // then the SIP one.
  EXPECT_EQ((std::vector<int>{2, 6, 10, 4, 1, 7, 5, 3, 8, 9}), Ids(book));

  std::list<AddressBookEntry> empty;
  agent.GroupAddressBook(empty);
  EXPECT_TRUE(empty.empty());
}

}  // namespace
