#include <gtest/gtest.h>

#include <list>
#include <string>
#include <utility>

#include "platform/extension/extension_manager.h"
#include "tests/support/temp_root.h"

namespace {

const char kFile[] = "telephony/extensiondb/user/101.cfg";
const char kUser[] =
    "section extension\n{\ndescription = Alice\n}\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 hunting\n{\nactive = 1\nhunt_mode = 2\ntarget_1 = 103,15\n}\n"
    "section contact 1 many_ringing\n{\nactive = 1\nnumbers = 201,202\n}\n";

// Numbers stored in lists must come back from the next read as they were
// given; a comma inside one would split it.
class ListMembersTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.Write(kFile, kUser); }

  // The any-caller services of 101 as a fresh manager reads them; the
  // manager lives as long as the test.
  SupServAccessor* Open() {
    ExtensionManager& db = managers_.emplace_back(root_.Path("telephony/extensiondb"), false);
    Extension* user = db.GetExtension(kExtUser, "101", false);
    if (user == nullptr || !user->LoadProperty(kPropAddressPatterns)) return nullptr;
    AddressPatternParams* book = user->GetAddressPatternParams();
    return book->GetSupServAccessor(book->GetBlock(1), false);
  }

  testing_support::TempRoot root_;
  std::list<ExtensionManager> managers_;
};

using Targets = std::list<std::pair<std::string, int32_t>>;

TEST_F(ListMembersTest, NumbersWithACommaAreRefusedAndTheFileKept) {
  SupServAccessor* services = Open();
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"104", 10}, {"10,5", 20}};
  EXPECT_FALSE(services->Store(0x010));
  services->hunt.targets = {{"104", 10}};
  services->manyRinging.numbers = {"203", "1,2"};
  EXPECT_FALSE(services->Store(0x010 | 0x020));  // one bad service fails the whole store
  EXPECT_EQ(kUser, root_.Read(kFile));

  SupServAccessor* again = Open();
  ASSERT_NE(nullptr, again);
  EXPECT_EQ((Targets{{"103", 15}}), again->hunt.targets);
  EXPECT_EQ((std::list<std::string>{"201", "202"}), again->manyRinging.numbers);
}

TEST_F(ListMembersTest, OnlyTheServicesStoredAreChecked) {
  SupServAccessor* services = Open();
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"10,5", 20}};  // not stored below
  services->manyRinging.numbers = {"203", "204"};
  services->forwardBusy.destinations = {{1, 0, "10,5"}};  // the address ends its line
  ASSERT_TRUE(services->Store(0x020 | 0x100));

  SupServAccessor* again = Open();
  ASSERT_NE(nullptr, again);
  EXPECT_EQ((Targets{{"103", 15}}), again->hunt.targets);
  EXPECT_EQ((std::list<std::string>{"203", "204"}), again->manyRinging.numbers);
  ASSERT_EQ(1u, again->forwardBusy.destinations.size());
  EXPECT_EQ("10,5", again->forwardBusy.destinations.front().address);
}

TEST_F(ListMembersTest, HuntTargetsWithoutACommaRoundTrip) {
  SupServAccessor* services = Open();
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"sip:ann@pbx", 7}, {"105", 0}};
  ASSERT_TRUE(services->Store(0x010));

  SupServAccessor* again = Open();
  ASSERT_NE(nullptr, again);
  EXPECT_EQ((Targets{{"sip:ann@pbx", 7}, {"105", 0}}), again->hunt.targets);
}

}  // namespace
