#include <gtest/gtest.h>

#include <string>

#include "platform/base/file_system.h"
#include "platform/base/posix_file_system.h"
#include "platform/extension/extension_manager.h"
#include "tests/support/temp_root.h"

namespace {

const char kUser[] =
    "section extension\n{\ndescription = Alice\n}\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 forward_busy\n{\nactive = 1\ntext = Busy\n"
    "destination_1 = 1,0,102\ndestination_2 = 0,1,sip:a@b,c\n}\n"
    "section contact 1 hunting\n{\nactive = 1\nhunt_mode = 2\ntarget_1 = 103,15\n}\n"
    "section contact 2\n{\nname = 0900*\ncall_type = 2\n}\n";

class AddressBookTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.Write("telephony/extensiondb/user/101.cfg", kUser); }
  void TearDown() override { cfg::FileSystem::SetDefaultForTesting(nullptr); }
  std::string Db() const { return root_.Path("telephony/extensiondb"); }

  // The services of contact `id` of 101 as a fresh manager reads them.
  SupServAccessor* Services(ExtensionManager& db, unsigned long id, bool create = false) {
    Extension* user = db.GetExtension(kExtUser, "101", false);
    if (user == nullptr || !user->ReloadProperty(kPropAddressPatterns)) return nullptr;
    AddressPatternParams* book = user->GetAddressPatternParams();
    return book->GetSupServAccessor(book->GetBlock(id), create);
  }

  testing_support::TempRoot root_;
};

TEST_F(AddressBookTest, ContactsAndTheirServicesDecode) {
  ExtensionManager db(Db(), false);
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, user);
  EXPECT_EQ(nullptr, user->GetAddressPatternParams());
  user->LoadProperty(kPropAddressPatterns);
  AddressPatternParams* book = user->GetAddressPatternParams();
  ASSERT_NE(nullptr, book);
  ASSERT_EQ(2u, book->GetAllBlocks().size());
  EXPECT_EQ(gAny, book->GetBlock(1)->name);
  EXPECT_EQ(2, book->GetBlock(2)->callType);
  EXPECT_EQ(nullptr, book->GetSupServAccessor(book->GetBlock(2), false));  // nothing stored

  SupServAccessor* services = book->GetSupServAccessor(book->GetBlock(1), false);
  ASSERT_NE(nullptr, services);
  EXPECT_EQ(1, services->forwardBusy.active);
  EXPECT_EQ(1, services->forwardBusy.hasText);
  EXPECT_EQ("Busy", services->forwardBusy.text);
  ASSERT_EQ(2u, services->forwardBusy.destinations.size());
  EXPECT_EQ("sip:a@b,c", services->forwardBusy.destinations.back().address);
  EXPECT_EQ(0, services->forwardBusy.destinations.back().enabled);
  EXPECT_EQ(0, services->forwardUnconditional.active);
  EXPECT_EQ(2, services->intercom.mode);
  ASSERT_EQ(1u, services->hunt.targets.size());
  EXPECT_EQ(15, services->hunt.targets.front().second);
}

TEST_F(AddressBookTest, StoredServicesReadBackIdentical) {
  ExtensionManager writer(Db(), false);
  SupServAccessor* services = Services(writer, 2, true);
  ASSERT_NE(nullptr, services);
  services->forwardUnconditional.active = 1;
  services->forwardUnconditional.hasText = 1;
  services->forwardUnconditional.text = "line one\n}\nsection evil\n{";
  services->forwardUnconditional.destinations.push_back({1, 2, "}"});
  services->distRinging.ringName = "  padded  ";
  ASSERT_TRUE(services->Store(0x040 | 0x008));

  ExtensionManager reader(Db(), false);
  SupServAccessor* again = Services(reader, 2);
  ASSERT_NE(nullptr, again);
  EXPECT_EQ("line one\n}\nsection evil\n{", again->forwardUnconditional.text);
  ASSERT_EQ(1u, again->forwardUnconditional.destinations.size());
  EXPECT_EQ("}", again->forwardUnconditional.destinations.front().address);
  EXPECT_EQ("  padded  ", again->distRinging.ringName);
  // Nothing else of the file moved.
  EXPECT_EQ(1, Services(reader, 1)->forwardBusy.active);
  EXPECT_EQ("Alice", reader.GetExtension(kExtUser, "101", false)->GetText());
}

TEST_F(AddressBookTest, TwoWritersKeepEachOthersChanges) {
  ExtensionManager first(Db(), false);
  ExtensionManager second(Db(), false);
  SupServAccessor* a = Services(first, 1);
  SupServAccessor* b = Services(second, 2, true);
  ASSERT_NE(nullptr, a);
  ASSERT_NE(nullptr, b);
  a->clir.active = 1;
  b->outgoingBlocking.active = 1;
  ASSERT_TRUE(a->Store(0x001));
  ASSERT_TRUE(b->Store(0x004));  // `second` read the file before `first` wrote

  ExtensionManager reader(Db(), false);
  EXPECT_EQ(1, Services(reader, 1)->clir.active);
  EXPECT_EQ(1, Services(reader, 2)->outgoingBlocking.active);
}

TEST_F(AddressBookTest, AddedContactsGetFreshIds) {
  ExtensionManager first(Db(), false);
  ExtensionManager second(Db(), false);
  Extension* one = first.GetExtension(kExtUser, "101", false);
  Extension* two = second.GetExtension(kExtUser, "101", false);
  one->LoadProperty(kPropAddressPatterns);
  two->LoadProperty(kPropAddressPatterns);
  AddressPatternBlock* x = one->GetAddressPatternParams()->CreateBlock();
  AddressPatternBlock* y = two->GetAddressPatternParams()->CreateBlock();
  EXPECT_EQ(3u, x->id);
  EXPECT_EQ(3u, y->id);
  x->name = "104";
  y->name = "105";
  ASSERT_TRUE(one->AddBlock(kPropAddressPatterns, x));
  ASSERT_TRUE(two->AddBlock(kPropAddressPatterns, y));
  EXPECT_NE(x->id, y->id);

  ExtensionManager reader(Db(), false);
  Extension* user = reader.GetExtension(kExtUser, "101", false);
  user->LoadProperty(kPropAddressPatterns);
  EXPECT_EQ(4u, user->GetAddressPatternParams()->GetAllBlocks().size());
  EXPECT_EQ("105", user->GetAddressPatternParams()->GetBlock(y->id)->name);
}

// Writes half the file, then fails, as a full disk would.
class FullDisk : public cfg::PosixFileSystem {
 protected:
  cfg::Status WriteAll(int fd, std::string_view data, const std::string& path) override {
    cfg::PosixFileSystem::WriteAll(fd, data.substr(0, data.size() / 2), path);
    return cfg::Status::IOError("disk full");
  }
};

TEST_F(AddressBookTest, FailedStoreLeavesTheOldFile) {
  ExtensionManager db(Db(), false);
  SupServAccessor* services = Services(db, 1);
  ASSERT_NE(nullptr, services);
  FullDisk full;
  cfg::FileSystem::SetDefaultForTesting(&full);
  services->clir.active = 1;
  EXPECT_FALSE(services->Store(0x001));
  cfg::FileSystem::SetDefaultForTesting(nullptr);
  EXPECT_EQ(kUser, root_.Read("telephony/extensiondb/user/101.cfg"));
}

}  // namespace
