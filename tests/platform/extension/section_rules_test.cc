// The key rules the extension database publishes for checkers must match
// what it reads and writes.
#include <gtest/gtest.h>

#include <string>

#include "platform/base/document.h"
#include "platform/base/document_store.h"
#include "platform/extension/extension_manager.h"
#include "platform/extension/section_rules.h"
#include "tests/support/temp_root.h"

namespace {

const char kFile[] = "telephony/extensiondb/user/101.cfg";

// The services of contact `id` of extension 101 as `db` reads them.
SupServAccessor* ContactServices(ExtensionManager& db, unsigned long id, bool create) {
  Extension* user = db.GetExtension(kExtUser, "101", false);
  if (user == nullptr || !user->ReloadProperty(kPropAddressPatterns)) return nullptr;
  AddressPatternParams* book = user->GetAddressPatternParams();
  return book->GetSupServAccessor(book->GetBlock(id), create);
}

TEST(SectionRulesTest, EverythingTheStoreWritesIsAKeyAndValueItsRulesTake) {
  testing_support::TempRoot root;
  root.Write(kFile, "section extension\n{\ndescription = Alice\n}\n"
                    "section contact 4\n{\nname = 0900*\ncall_type = 2\n}\n");
  ExtensionManager db(root.Path("telephony/extensiondb"), false);
  SupServAccessor* services = ContactServices(db, 4, true);
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"102", 15}, {"103", 0}};
  services->manyRinging.numbers = {"104", "105"};
  services->forwardBusy.hasText = 1;
  services->forwardBusy.text = "busy";
  services->forwardBusy.destinations = {{1, 0, "102"}, {0, 1, "sip:a@b"}};
  services->outgoingBlocking.blockMode = 3;
  ASSERT_TRUE(services->Store(0x3FF));  // every service

  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(root.Path(kFile), &doc).ok());
  size_t entries = 0;
  for (const cfg::Section& section : doc.sections()) {
    const extdb::SectionReading reading = extdb::ReadingOf(section.name);
    ASSERT_NE(nullptr, reading.keys) << section.name;
    for (const cfg::Entry& entry : section.entries) {
      const cfg::KeyRule* rule = cfg::FindKeyRule(*reading.keys, entry.key);
      ASSERT_NE(nullptr, rule) << section.name << ": " << entry.key;
      EXPECT_TRUE(cfg::Accepts(*rule, entry.value)) << entry.key << " = " << entry.value;
      ++entries;
    }
  }
  // The description, the contact and what differs from the defaults.
  EXPECT_EQ(10u, entries);
}

TEST(SectionRulesTest, SectionsAreReadUnderTheNamesTheReaderLooksUp) {
  extdb::SectionReading speedDial = extdb::ReadingOf("speed_dial 0x1f");
  ASSERT_NE(nullptr, speedDial.keys);
  EXPECT_STREQ("speed dial", speedDial.list);
  EXPECT_EQ(31u, speedDial.id);
  extdb::SectionReading contact = extdb::ReadingOf("contact 05");
  ASSERT_NE(nullptr, contact.keys);
  EXPECT_STREQ("contact", contact.list);
  EXPECT_EQ(5u, contact.id);
  // A contact's services are looked up as "contact 5 clir": other
  // spellings of the id, and services that do not exist, are never read.
  EXPECT_NE(nullptr, extdb::ReadingOf("contact 5 clir").keys);
  EXPECT_STREQ("", extdb::ReadingOf("contact 5 clir").list);
  EXPECT_EQ(nullptr, extdb::ReadingOf("contact 05 clir").keys);
  EXPECT_EQ(nullptr, extdb::ReadingOf("contact 5 forward_all").keys);
  EXPECT_EQ(nullptr, extdb::ReadingOf("sip2").keys);
  EXPECT_EQ(nullptr, extdb::ReadingOf("speed_dial").keys);
  // Both attendant properties live in one section.
  ASSERT_NE(nullptr, extdb::ReadingOf("attendant").keys);
  EXPECT_NE(nullptr, cfg::FindKeyRule(*extdb::ReadingOf("attendant").keys, "night_destination"));
}

TEST(SectionRulesTest, NumberedEntriesAreTakenExactlyWhenTheReaderTakesThem) {
  testing_support::TempRoot root;
  root.Write(kFile,
             "section contact 1\n{\nname = *\n}\n"
             "section contact 1 hunting\n{\ntarget_1 = 102\ntarget_2 = 103,x\n"
             "target_3 = 104,20\ntarget_x = 105\n}\n"
             "section contact 1 forward_busy\n{\ndestination_1 = 1,0\n"
             "destination_2 = 1,0,106\n}\n");
  ExtensionManager db(root.Path("telephony/extensiondb"), false);
  SupServAccessor* services = ContactServices(db, 1, false);
  ASSERT_NE(nullptr, services);
  ASSERT_EQ(2u, services->hunt.targets.size());
  EXPECT_EQ("104", services->hunt.targets.back().first);
  ASSERT_EQ(1u, services->forwardBusy.destinations.size());
  EXPECT_EQ("106", services->forwardBusy.destinations.front().address);

  const cfg::KeyRules& hunt = *extdb::ReadingOf("contact 1 hunting").keys;
  EXPECT_TRUE(cfg::Accepts(*cfg::FindKeyRule(hunt, "target_1"), "102"));
  EXPECT_FALSE(cfg::Accepts(*cfg::FindKeyRule(hunt, "target_2"), "103,x"));
  EXPECT_TRUE(cfg::Accepts(*cfg::FindKeyRule(hunt, "target_3"), "104,20"));
  EXPECT_EQ(nullptr, cfg::FindKeyRule(hunt, "target_x"));
  EXPECT_EQ(nullptr, cfg::FindKeyRule(hunt, "target_"));
  const cfg::KeyRules& forward = *extdb::ReadingOf("contact 1 forward_busy").keys;
  EXPECT_FALSE(cfg::Accepts(*cfg::FindKeyRule(forward, "destination_1"), "1,0"));
  EXPECT_TRUE(cfg::Accepts(*cfg::FindKeyRule(forward, "destination_2"), "1,0,106"));
}

}  // namespace
