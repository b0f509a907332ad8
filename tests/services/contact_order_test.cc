// The order of an address book: the first matching contact wins, so plain
// numbers come before patterns and specific patterns before general ones.
#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include "tests/support/agent_fixture.h"

namespace {

class ContactOrderTest : public testing_support::AgentTest {};

TEST_F(ContactOrderTest, WildcardsUnlessEscaped) {
  CMAgent& agent = Start();
  for (const char* name : {"?", "12*", "\\?1?", "*", "1\\*2?"}) EXPECT_TRUE(agent.IsWildCardExist(name)) << name;
  for (const char* name : {"\\?12", "12\\*", "", "1234", "\\*\\?"}) EXPECT_FALSE(agent.IsWildCardExist(name)) << name;
}

TEST_F(ContactOrderTest, GroupsByCallTypeNumbersFirstThenPatternsMostSpecificFirst) {
  std::list<AddressBookEntry> book, empty;
  const std::pair<const char*, CallType> contacts[] = {
      {"12*", kCallNumber}, {"1234", kCallNumber}, {"5*", kCallPstn}, {"12?4", kCallNumber}, {"999", kCallPstn},
      {"100", kCallNumber}, {"1?", kCallNumber},   {"5*", kCallPstn}, {"sip", kCallSip},     {"\\*", kCallNumber},
      {"\\??5?", kCallNumber}, {"123", kCallNumber}, {"12?", kCallNumber}};
  for (const auto& [name, type] : contacts) {
    const int id = static_cast<int>(book.size()) + 1;
    book.emplace_back(Contact(name, id, type), SupServiceSet());
    book.back().second.clir.active = id;  // the services travel with their contact
  }
  CMAgent& agent = Start();
  agent.GroupAddressBook(book);
  agent.GroupAddressBook(empty);
  EXPECT_TRUE(empty.empty());
  // Number contacts: the plain 1234, 100, \* and 123 (escaped: no pattern);
  // then the patterns descending with '?' as '.': \??5? (an escaped '?'
  // stays, and hides the character after it) as ??5., 12?4 as 12.4, 12? as
  // 12., 12*, 1? as 1.; then the PSTN contacts, equal patterns in their
  // order; then the SIP one.
  std::vector<int> ids;
  for (const AddressBookEntry& entry : book) {
    EXPECT_EQ(entry.first.id, entry.second.clir.active);
    ids.push_back(entry.first.id);
  }
  EXPECT_EQ((std::vector<int>{2, 6, 10, 12, 11, 4, 13, 1, 7, 5, 3, 8, 9}), ids);
}

}  // namespace
