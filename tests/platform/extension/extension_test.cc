// The extension database (telephony/extensiondb): which files are
// extensions, what their properties read as, when they are read again, and
// what storing a contact's services writes.
#include "platform/extension/extension_manager.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <string>
#include <utility>

#include "platform/base/posix_file_system.h"
#include "platform/extension/section_rules.h"
#include "tests/support/platform_fixture.h"

namespace {

const char kUser[] =
    "section extension\n{\ndescription = Alice\n}\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 forward_busy\n{\nactive = 1\ntext = Busy\n"
    "destination_1 = 1,0,102\ndestination_2 = 0,1,sip:a@b,c\n}\n"
    "section contact 1 hunting\n{\nactive = 1\nhunt_mode = 2\ntarget_1 = 103,15\n}\n"
    "section contact 1 many_ringing\n{\nactive = 1\nnumbers = 201,202\n}\n"
    "section contact 2\n{\nname = 0900*\ncall_type = 2\n}\n";
const char kFile[] = "telephony/extensiondb/user/101.cfg";
using Targets = std::list<std::pair<std::string, int32_t>>;

class ExtensionTest : public testing_support::PlatformTest {
 protected:
  std::string Db() const { return root_.Path("telephony/extensiondb"); }
  void Put(const std::string& relative, const std::string& contents) {
    root_.Write("telephony/extensiondb/" + relative, contents);
  }
  // The services of contact `id` of 101 as a fresh manager (living as long
  // as the test) reads them.
  SupServAccessor* Services(unsigned long id, bool create = false) {
    ExtensionManager& db = managers_.emplace_back(Db(), false);
    Extension* user = db.GetExtension(kExtUser, "101", false);
    if (user == nullptr || !user->LoadProperty(kPropAddressPatterns)) return nullptr;
    AddressPatternParams* book = user->GetAddressPatternParams();
    return book->GetSupServAccessor(book->GetBlock(id), create);
  }
  std::list<ExtensionManager> managers_;
};

TEST_F(ExtensionTest, FindsEachKindAndTheSystemAttendant) {
  Put("system.cfg", "section database\n{\nsystem_attendant = 100\n}\n");
  Put("attendant/100.cfg", "section extension\n{\ndescription = Reception\n}\n");
  Put("user/101.cfg", "section sip\n{\nuser_name = alice\nregister_expiry = 60\n}\n");
  Put("pickup/300.cfg", "section pickup_group\n{\nmembers = 101, 102\n}\n");
  Put("paging/101.cfg", "section extension\n{\n}\n");
  ExtensionManager db(Db(), false);
  CHAttendant* system = db.GetSystemExtension(false);
  ASSERT_NE(nullptr, system);
  EXPECT_EQ("100", system->GetName());
  EXPECT_EQ(kExtAttendant, system->GetType());
  EXPECT_EQ("Reception", system->GetText());
  EXPECT_EQ(system, db.GetAttendant("100", false));  // kept by the manager
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, user);
  EXPECT_EQ(nullptr, user->GetSipSettingsParams());  // not loaded yet
  ASSERT_TRUE(user->LoadProperty(kPropSipSettings | kPropCodecs));
  EXPECT_EQ("alice", user->GetSipSettingsParams()->userName);
  EXPECT_EQ(60, user->GetSipSettingsParams()->registerExpiry);
  EXPECT_EQ(1, user->GetSipSettingsParams()->registrationEnabled);  // default kept
  EXPECT_TRUE(user->GetCodecParams()->voiceCodecs.empty());  // no section: defaults
  EXPECT_FALSE(user->HasSection(kPropCodecs));
  EXPECT_TRUE(user->HasSection(kPropSipSettings));
  EXPECT_EQ(user, db.GetExtension("101", false));  // by name alone: users first
  EXPECT_EQ(nullptr, db.GetExtension("100", false));  // attendants never
  Extension* pickup = db.GetExtension("300", true);
  ASSERT_NE(nullptr, pickup);
  EXPECT_EQ((std::list<std::string>{"101", "102"}), pickup->GetPickupGroupParams()->members);
  EXPECT_EQ(nullptr, db.GetExtension(kExtCallPark, "300", false));
  Put("system.cfg", "section database\n{\nsystem_attendant = 999\n}\n");
  EXPECT_EQ(nullptr, db.GetSystemExtension(false));
}

TEST_F(ExtensionTest, ListsExtensionFilesInNaturalOrderAndNeverFindsBadNames) {
  for (const char* name : {"10", "9", "100", "a", "B", "010", "2x", "2", "101"})
    Put(std::string("user/") + name + ".cfg", "");
  for (const char* other : {"user/notes.txt", "user/..cfg", "user/.cfg", "user/cfg", "user/11.cfg.lock",
                            "user/12.cfg.123.0000abcd.tmp", "user/13.cfgx"})
    Put(other, "");
  root_.MakeDir("telephony/extensiondb/user/14.cfg");
  root_.Write("telephony/secret.cfg", "section sip\n{\npassword = x\n}\n");
  const std::string dir = Db() + "/user/";
  ASSERT_EQ(0, symlink("10.cfg", (dir + "link.cfg").c_str()));  // counts as its target
  ASSERT_EQ(0, symlink("14.cfg", (dir + "dirlink.cfg").c_str()));
  ASSERT_EQ(0, symlink("none.cfg", (dir + "dangling.cfg").c_str()));
  ASSERT_EQ(0, mkfifo((dir + "fifo.cfg").c_str(), 0644));
  ExtensionManager db(Db(), false);
  std::list<std::string> names = {"stale"};
  ASSERT_TRUE(db.GetAllExtensionsNames(kExtUser, names));
  EXPECT_EQ((std::list<std::string>{"2", "2x", "9", "010", "10", "100", "101", "B", "a", "link"}), names);
  EXPECT_FALSE(db.GetAllExtensionsNames(kExtPaging, names));  // no such folder
  EXPECT_TRUE(names.empty());
  for (const std::string& name : {std::string(""), std::string("../secret"), std::string(".."),
                                  std::string("."), std::string("../../telephony/secret"),
                                  std::string("a/b"), std::string("10\n1"), std::string("10\x01"),
                                  std::string("101\0x", 5)}) {
    EXPECT_EQ(nullptr, db.GetExtension(kExtUser, name, true)) << name;
    EXPECT_EQ(nullptr, db.GetAttendant(name, true)) << name;
  }
  EXPECT_NE(nullptr, db.GetExtension(kExtUser, "101", true));
}

TEST_F(ExtensionTest, FileIsReadOncePerManagerUntilReloaded) {
  Put("user/101.cfg", "section codecs\n{\nvoice_codecs = G711A\n}\nsection speed_dial 1\n{\nname = Bob\n}\n");
  ExtensionManager db(Db(), false);
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, user);
  ASSERT_TRUE(user->LoadProperty(kPropSpeedDial));
  std::list<SpeedDialBlock*> before = user->GetSpeedDialBlocks();
  ASSERT_EQ(1u, before.size());
  Put("user/101.cfg", "section codecs\n{\nvoice_codecs = G729\n}\nsection timeouts\n{\n}\n"
                      "section speed_dial 2\n{\nname = Carol\n}\nsection speed_dial 3\n{\n}\n");
  user->LoadProperty(kPropCodecs | kPropTimeouts);
  ExtCodecParams* codecs = user->GetCodecParams();
  EXPECT_EQ((std::list<std::string>{"G711A"}), codecs->voiceCodecs);  // as first read
  EXPECT_FALSE(user->HasSection(kPropTimeouts));
  ExtTimeoutsParams* timeouts = user->GetTimeoutsParams();
  EXPECT_EQ(60, timeouts->callParkTimeout);
  ASSERT_TRUE(user->ReloadProperty(kPropCodecs | kPropTimeouts | kPropSpeedDial));
  EXPECT_EQ(codecs, user->GetCodecParams());  // refreshed in place
  EXPECT_EQ((std::list<std::string>{"G729"}), codecs->voiceCodecs);
  EXPECT_TRUE(user->HasSection(kPropTimeouts));
  std::list<SpeedDialBlock*> after = user->GetSpeedDialBlocks();
  ASSERT_EQ(2u, after.size());
  EXPECT_EQ(std::make_pair(2ul, std::string("Carol")), std::make_pair(after.front()->id, after.front()->name));
  EXPECT_EQ("Bob", before.front()->name);  // retired, not freed (the sanitizer build checks)
  EXPECT_EQ((std::list<std::string>{"G729"}),
            ExtensionManager(Db(), true).GetExtension(kExtUser, "101", false)->GetCodecParams()->voiceCodecs);
  // The file goes: re-read properties are no longer served, nothing new
  // loads, and blocks handed out stay readable until it comes back.
  ASSERT_EQ(0, std::remove(root_.Path(kFile).c_str()));
  EXPECT_FALSE(user->ReloadProperty(kPropCodecs));
  EXPECT_EQ(nullptr, user->GetCodecParams());
  EXPECT_EQ(timeouts, user->GetTimeoutsParams());
  EXPECT_FALSE(user->LoadProperty(kPropSipSettings));
  EXPECT_EQ(nullptr, user->GetSipSettingsParams());
  EXPECT_EQ((std::list<std::string>{"G729"}), codecs->voiceCodecs);
  Put("user/101.cfg", "section timeouts\n{\n}\n");
  ASSERT_TRUE(user->ReloadProperty(kPropCodecs));
  EXPECT_EQ(codecs, user->GetCodecParams());
  EXPECT_TRUE(codecs->voiceCodecs.empty());  // the section went: defaults
}

TEST_F(ExtensionTest, KeepsOnlyTheMostRecentlyFetched) {
  const size_t kKept = ExtensionManager::kKeptExtensions;
  auto put = [&](const std::string& text) {
    for (size_t i = 0; i < 3 * kKept; ++i)
      Put("user/" + std::to_string(i) + ".cfg", "section extension\n{\ndescription = " + text + "\n}\n");
  };
  put("old");
  ExtensionManager db(Db(), false);
  auto fetch = [&](size_t from, size_t to) {  // others, none of them "0"
    for (size_t i = from; i < to; ++i) ASSERT_NE(nullptr, db.GetExtension(kExtUser, std::to_string(i), false));
  };
  Extension* first = db.GetExtension(kExtUser, "0", true);
  ASSERT_NE(nullptr, first);
  put("new");  // what is read from now on says so
  fetch(1, kKept);
  EXPECT_EQ(3600, first->GetSipSettingsParams()->registerExpiry);  // still alive
  EXPECT_EQ(first, db.GetExtension(kExtUser, "0", false));       // and made the most recent
  fetch(kKept, 2 * kKept - 1);
  EXPECT_EQ(nullptr, db.GetExtension(kExtUser, "none", false));  // failures count for nothing
  EXPECT_EQ("old", db.GetExtension("0", false)->GetText());     // not read again
  fetch(2 * kKept - 1, 3 * kKept - 1);
  EXPECT_EQ("new", db.GetExtension(kExtUser, "0", false)->GetText());  // dropped, read afresh
}

TEST_F(ExtensionTest, BadAndEmptyFilesReadAsDefaults) {
  Put("user/201.cfg", std::string("\x7f\x45\x4c\x46\x02\x01\x01\0\0\0garbage", 18));
  Put("user/202.cfg",
      "section timeouts\n{\nno_answer_timeout = 25\ndial_timeout = soon\n}\n"
      "section timeouts\n{\nno_answer_timeout = 99\n}\n"
      "section codecs\n{\nvoice_codecs = G711A,G729\n");  // truncated: no closer
  Put("user/203.cfg", "section extension\n{\ndescription = " + std::string(1 << 20, 'x') + "\n}\n");
  root_.MakeDir("telephony/extensiondb/user/204.cfg");
  Put("attendant/100.cfg", "section contact 1 clir\n{\n}\n");  // a service alone: no contact
  ExtensionManager db(Db(), true);
  EXPECT_EQ(3600, db.GetExtension(kExtUser, "201", true)->GetSipSettingsParams()->registerExpiry);
  Extension* odd = db.GetExtension(kExtUser, "202", true);
  EXPECT_EQ(25, odd->GetTimeoutsParams()->noAnswerTimeout);  // the first section wins
  EXPECT_EQ(10, odd->GetTimeoutsParams()->dialTimeout);      // not a number: the default
  EXPECT_EQ(2u, odd->GetCodecParams()->voiceCodecs.size());
  EXPECT_EQ(size_t{1} << 20, db.GetExtension(kExtUser, "203", false)->GetText().size());
  EXPECT_EQ(nullptr, db.GetExtension(kExtUser, "204", true));
  CHAttendant* attendant = db.GetAttendant("100", true);
  ASSERT_NE(nullptr, attendant);
  EXPECT_TRUE(attendant->GetAddressPatternParams()->GetAllBlocks().empty());
  for (unsigned bit = 1; bit != 0; bit <<= 1) EXPECT_FALSE(attendant->HasSection(bit)) << bit;
  Put("attendant/100.cfg", "section contact 7\n{\n}\nsection speed_dial 1\n{\n}\n");
  ASSERT_TRUE(attendant->ReloadProperty(kPropSpeedDial));
  EXPECT_TRUE(attendant->HasSection(kPropAddressPatterns));
  EXPECT_TRUE(attendant->HasSection(kPropSpeedDial));
}

TEST_F(ExtensionTest, ServiceCodesAreTakenOnlyUnderTheirExactKeys) {
  Put("user/101.cfg", "section service_codes\n{\ncode_1 = *72\ncode_1 = shadowed\ncode_20 = #20\n"
                      "code_21 = x\ncode_0 = x\ncode_01 = x\ncode_1x = x\ncode_: = x\ncode_ = x\n"
                      "code_100 = x\ncode_9 = *9\n}\n");
  ExtensionManager db(Db(), false);
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_TRUE(user->LoadProperty(kPropServiceCodes));
  const ExtServiceCodesParams* codes = user->GetServiceCodesParams();
  std::string read;
  for (const std::string& code : codes->codes) read += code + "|";
  EXPECT_EQ("*72||||||||*9|||||||||||#20|", read);  // code_10 stays empty: ':' is no digit
}

TEST_F(ExtensionTest, StoredServicesReadBackAndKeepTheRestOfTheFile) {
  root_.Write(kFile, kUser);
  SupServAccessor* services = Services(2, true);
  ASSERT_NE(nullptr, services);
  services->forwardUnconditional.active = 1;
  services->forwardUnconditional.hasText = 1;
  services->forwardUnconditional.text = "line one\n}\nsection evil\n{";
  services->forwardUnconditional.destinations.push_back({1, 2, "}"});
  services->distRinging.ringName = "  padded  ";
  services->hunt.targets = {{"sip:ann@pbx", 7}, {"105", 0}};
  services->forwardBusy.destinations = {{1, 0, "10,5"}};
  ASSERT_TRUE(services->Store(0x040 | 0x008 | 0x010 | 0x100));
  SupServAccessor* again = Services(2);
  ASSERT_NE(nullptr, again);
  EXPECT_EQ("line one\n}\nsection evil\n{", again->forwardUnconditional.text);
  ASSERT_EQ(1u, again->forwardUnconditional.destinations.size());
  EXPECT_EQ("}", again->forwardUnconditional.destinations.front().address);
  EXPECT_EQ("  padded  ", again->distRinging.ringName);
  EXPECT_EQ((Targets{{"sip:ann@pbx", 7}, {"105", 0}}), again->hunt.targets);
  EXPECT_EQ("10,5", again->forwardBusy.destinations.front().address);
  EXPECT_EQ(1, Services(1)->forwardBusy.active);
  EXPECT_EQ("Alice", managers_.back().GetExtension(kExtUser, "101", false)->GetText());
}

// A comma inside a listed number would split it on the next read: such a
// store is refused whole, but only the services stored are checked.
TEST_F(ExtensionTest, NumbersWithACommaRefuseTheStore) {
  root_.Write(kFile, kUser);
  SupServAccessor* services = Services(1);
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"104", 10}, {"10,5", 20}};
  EXPECT_FALSE(services->Store(0x010));
  services->hunt.targets = {{"104", 10}};
  services->manyRinging.numbers = {"203", "1,2"};
  EXPECT_FALSE(services->Store(0x010 | 0x020));
  EXPECT_EQ(kUser, root_.Read(kFile));
  services->hunt.targets = {{"10,5", 20}};  // not stored below
  services->manyRinging.numbers = {"203", "204"};
  ASSERT_TRUE(services->Store(0x020));
  SupServAccessor* again = Services(1);
  EXPECT_EQ((Targets{{"103", 15}}), again->hunt.targets);
  EXPECT_EQ((std::list<std::string>{"203", "204"}), again->manyRinging.numbers);
  again->hunt.targets = {{"sip:ann@pbx", 7}, {"105", 0}};  // replaces the one stored
  ASSERT_TRUE(again->Store(0x010));
  EXPECT_EQ((Targets{{"sip:ann@pbx", 7}, {"105", 0}}), Services(1)->hunt.targets);
}

TEST_F(ExtensionTest, WritersKeepEachOthersChangesAndNewContactsGetFreshIds) {
  root_.Write(kFile, kUser);
  SupServAccessor* a = Services(1);
  SupServAccessor* b = Services(2, true);
  ASSERT_TRUE(a && b);
  a->clir.active = 1;
  b->outgoingBlocking.active = 1;
  ASSERT_TRUE(a->Store(0x001));
  ASSERT_TRUE(b->Store(0x004));  // b's manager read the file before a wrote
  EXPECT_EQ(1, Services(1)->clir.active);
  EXPECT_EQ(1, Services(2)->outgoingBlocking.active);
  Extension* one = managers_.front().GetExtension(kExtUser, "101", false);
  Extension* two = managers_.back().GetExtension(kExtUser, "101", false);
  AddressPatternBlock* x = one->GetAddressPatternParams()->CreateBlock();
  AddressPatternBlock* y = two->GetAddressPatternParams()->CreateBlock();
  EXPECT_EQ(std::make_pair(3ul, 3ul), std::make_pair(x->id, y->id));
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

TEST_F(ExtensionTest, FailedStoreLeavesTheOldFile) {
  root_.Write(kFile, kUser);
  SupServAccessor* services = Services(1);
  ASSERT_NE(nullptr, services);
  class FullDisk : public cfg::PosixFileSystem {  // half the file, then a full disk
   protected:
    cfg::Status WriteAll(int fd, std::string_view data, const std::string& path) override {
      cfg::PosixFileSystem::WriteAll(fd, data.substr(0, data.size() / 2), path);
      return cfg::Status::IOError("disk full");
    }
  } full;
  cfg::FileSystem::SetDefaultForTesting(&full);
  services->clir.active = 1;
  EXPECT_FALSE(services->Store(0x001));
  EXPECT_EQ(kUser, root_.Read(kFile));
}

// The key rules published for checkers must match what the database reads
// and writes.
TEST_F(ExtensionTest, EverythingAStoreWritesIsAKeyAndValueItsRulesTake) {
  root_.Write(kFile, "section extension\n{\ndescription = Alice\n}\nsection contact 4\n{\nname = 0900*\ncall_type = 2\n}\n");
  SupServAccessor* services = Services(4, true);
  ASSERT_NE(nullptr, services);
  services->hunt.targets = {{"102", 15}, {"103", 0}};
  services->manyRinging.numbers = {"104", "105"};
  services->forwardBusy.hasText = 1;
  services->forwardBusy.text = "busy";
  services->forwardBusy.destinations = {{1, 0, "102"}, {0, 1, "sip:a@b"}};
  services->outgoingBlocking.blockMode = 3;
  ASSERT_TRUE(services->Store(0x3FF));  // every service
  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(root_.Path(kFile), &doc).ok());
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
  EXPECT_EQ(10u, entries);  // the description, the contact and what differs from the defaults
}

TEST_F(ExtensionTest, SectionsAndNumberedEntriesAreTakenExactlyWhenTheReaderTakesThem) {
  const extdb::SectionReading speed_dial = extdb::ReadingOf("speed_dial 0x1f");
  ASSERT_NE(nullptr, speed_dial.keys);
  EXPECT_EQ(std::make_pair(std::string("speed dial"), 31ul), std::make_pair(std::string(speed_dial.list), speed_dial.id));
  const extdb::SectionReading contact = extdb::ReadingOf("contact 05");
  ASSERT_NE(nullptr, contact.keys);
  EXPECT_EQ(std::make_pair(std::string("contact"), 5ul), std::make_pair(std::string(contact.list), contact.id));
  // Services are looked up as "contact 5 clir": other spellings of the id,
  // and services that do not exist, are never read.
  EXPECT_STREQ("", extdb::ReadingOf("contact 5 clir").list);
  for (const char* unread : {"contact 05 clir", "contact 5 forward_all", "sip2", "speed_dial"})
    EXPECT_EQ(nullptr, extdb::ReadingOf(unread).keys) << unread;
  EXPECT_NE(nullptr, cfg::FindKeyRule(*extdb::ReadingOf("attendant").keys, "night_destination"));
  root_.Write(kFile, "section contact 1\n{\nname = *\n}\n"
                     "section contact 1 hunting\n{\ntarget_1 = 102\ntarget_2 = 103,x\ntarget_3 = 104,20\n"
                     "target_x = 105\n}\nsection contact 1 forward_busy\n{\ndestination_1 = 1,0\n"
                     "destination_2 = 1,0,106\n}\n");
  SupServAccessor* services = Services(1);
  ASSERT_NE(nullptr, services);
  EXPECT_EQ((Targets{{"102", 0}, {"104", 20}}), services->hunt.targets);
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
