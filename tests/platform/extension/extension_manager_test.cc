#include "platform/extension/extension_manager.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/temp_root.h"

namespace {

class ExtensionDbTest : public ::testing::Test {
 protected:
  std::string Db() const { return root_.Path("telephony/extensiondb"); }
  void Put(const std::string& relative, const std::string& contents) {
    root_.Write("telephony/extensiondb/" + relative, contents);
  }

  testing_support::TempRoot root_;
  std::unique_ptr<ExtensionManager> db_;
};

TEST_F(ExtensionDbTest, FindsEachKindAndTheSystemAttendant) {
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
  ASSERT_NE(nullptr, user->GetSipSettingsParams());
  EXPECT_EQ("alice", user->GetSipSettingsParams()->userName);
  EXPECT_EQ(60, user->GetSipSettingsParams()->registerExpiry);
  EXPECT_EQ(1, user->GetSipSettingsParams()->registrationEnabled);  // default kept
  ASSERT_NE(nullptr, user->GetCodecParams());  // no codecs section: defaults
  EXPECT_TRUE(user->GetCodecParams()->voiceCodecs.empty());
  EXPECT_FALSE(user->HasSection(kPropCodecs));
  EXPECT_TRUE(user->HasSection(kPropSipSettings));

  // By name alone: users first, attendants never.
  EXPECT_EQ(user, db.GetExtension("101", false));
  EXPECT_EQ(nullptr, db.GetExtension("100", false));
  Extension* pickup = db.GetExtension("300", true);
  ASSERT_NE(nullptr, pickup);
  ASSERT_NE(nullptr, pickup->GetPickupGroupParams());
  EXPECT_EQ((std::list<std::string>{"101", "102"}), pickup->GetPickupGroupParams()->members);
  EXPECT_EQ(nullptr, db.GetExtension(kExtCallPark, "300", false));

  Put("system.cfg", "section database\n{\nsystem_attendant = 999\n}\n");
  EXPECT_EQ(nullptr, db.GetSystemExtension(false));
}

TEST_F(ExtensionDbTest, ListsInNaturalOrderAndSkipsWhatIsNoExtension) {
  for (const char* name : {"10", "9", "100", "a", "B", "010", "2x", "2"})
    Put(std::string("user/") + name + ".cfg", "");
  Put("user/notes.txt", "");
  Put("user/..cfg", "");  // would list as "."
  Put("user/11.cfg.lock", "");
  Put("user/12.cfg.123.0000abcd.tmp", "");
  root_.MakeDir("telephony/extensiondb/user/13.cfg");
  const std::string dir = Db() + "/user/";
  ASSERT_EQ(0, symlink("10.cfg", (dir + "link.cfg").c_str()));  // counts as its target
  ASSERT_EQ(0, symlink("13.cfg", (dir + "dirlink.cfg").c_str()));
  ASSERT_EQ(0, symlink("none.cfg", (dir + "dangling.cfg").c_str()));
  ASSERT_EQ(0, mkfifo((dir + "fifo.cfg").c_str(), 0644));

  ExtensionManager db(Db(), false);
  std::list<std::string> names = {"stale"};
  ASSERT_TRUE(db.GetAllExtensionsNames(kExtUser, names));
  EXPECT_EQ((std::list<std::string>{"2", "2x", "9", "010", "10", "100", "B", "a", "link"}), names);
  EXPECT_FALSE(db.GetAllExtensionsNames(kExtPaging, names));  // no such folder
  EXPECT_TRUE(names.empty());
}

TEST_F(ExtensionDbTest, BadNamesAreNeverFound) {
  Put("user/101.cfg", "");
  root_.Write("telephony/secret.cfg", "section sip\n{\npassword = x\n}\n");
  ExtensionManager db(Db(), false);
  for (const std::string& name : {std::string(""), std::string("../secret"), std::string(".."),
                                  std::string("."),
                                  std::string("../../telephony/secret"), std::string("a/b"),
                                  std::string("10\n1"), std::string("10\x01"),
                                  std::string("101\0x", 5)}) {
    EXPECT_EQ(nullptr, db.GetExtension(kExtUser, name, true)) << name;
    EXPECT_EQ(nullptr, db.GetAttendant(name, true)) << name;
  }
  EXPECT_NE(nullptr, db.GetExtension(kExtUser, "101", true));
}

TEST_F(ExtensionDbTest, FileIsReadOncePerManagerUntilReloaded) {
  Put("user/101.cfg", "section codecs\n{\nvoice_codecs = G711A\n}\n");
  ExtensionManager db(Db(), false);
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, user);

  Put("user/101.cfg", "section codecs\n{\nvoice_codecs = G729\n}\nsection timeouts\n{\n}\n");
  user->LoadProperty(kPropCodecs | kPropTimeouts);
  ExtCodecParams* codecs = user->GetCodecParams();
  ASSERT_NE(nullptr, codecs);
  EXPECT_EQ((std::list<std::string>{"G711A"}), codecs->voiceCodecs);
  EXPECT_FALSE(user->HasSection(kPropTimeouts));
  ExtTimeoutsParams* timeouts = user->GetTimeoutsParams();
  ASSERT_NE(nullptr, timeouts);
  EXPECT_EQ(60, timeouts->callParkTimeout);

  ASSERT_TRUE(user->ReloadProperty(kPropCodecs | kPropTimeouts));
  EXPECT_EQ(codecs, user->GetCodecParams());  // refreshed in place
  EXPECT_EQ((std::list<std::string>{"G729"}), codecs->voiceCodecs);
  EXPECT_TRUE(user->HasSection(kPropTimeouts));
  // A second manager sees the file as it is now.
  ExtensionManager other(Db(), true);
  EXPECT_EQ((std::list<std::string>{"G729"}),
            other.GetExtension(kExtUser, "101", false)->GetCodecParams()->voiceCodecs);

  // The file goes: re-read properties are no longer served, nothing new
  // loads, and the blocks handed out stay readable until it comes back.
  ASSERT_EQ(0, std::remove(root_.Path("telephony/extensiondb/user/101.cfg").c_str()));
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

TEST_F(ExtensionDbTest, SpeedDialEntriesHandedOutOutliveAReload) {
  Put("user/101.cfg", "section speed_dial 1\n{\nname = Bob\n}\n");
  ExtensionManager db(Db(), false);
  Extension* user = db.GetExtension(kExtUser, "101", false);
  ASSERT_NE(nullptr, user);
  ASSERT_TRUE(user->LoadProperty(kPropSpeedDial));
  std::list<SpeedDialBlock*> before = user->GetSpeedDialBlocks();
  ASSERT_EQ(1u, before.size());

  Put("user/101.cfg", "section speed_dial 2\n{\nname = Carol\n}\nsection speed_dial 3\n{\n}\n");
  ASSERT_TRUE(user->ReloadProperty(kPropSpeedDial));
  std::list<SpeedDialBlock*> after = user->GetSpeedDialBlocks();
  ASSERT_EQ(2u, after.size());
  EXPECT_EQ(2u, after.front()->id);
  EXPECT_EQ("Carol", after.front()->name);
  EXPECT_EQ(3u, after.back()->id);
  // The entry handed out before is retired, not freed (the sanitizer build
  // catches a read of freed memory here).
  EXPECT_EQ("Bob", before.front()->name);
}

TEST_F(ExtensionDbTest, EveryPropertyOfAnEmptyFileReadsAsDefaults) {
  Put("attendant/100.cfg", "section contact 1 clir\n{\n}\n");  // a service alone: no contact
  ExtensionManager db(Db(), false);
  CHAttendant* attendant = db.GetAttendant("100", true);
  ASSERT_NE(nullptr, attendant);
  EXPECT_NE(nullptr, attendant->GetPstnAgentParams());
  EXPECT_EQ(15, attendant->GetAttGeneralParams()->queueSize);
  EXPECT_EQ(30u, attendant->GetBusyRedialParams()->interval);
  EXPECT_TRUE(attendant->GetAccessListParams()->entries.empty());
  EXPECT_TRUE(attendant->GetAddressPatternParams()->GetAllBlocks().empty());
  for (unsigned bit = 1; bit != 0; bit <<= 1) EXPECT_FALSE(attendant->HasSection(bit)) << bit;
  Put("attendant/100.cfg", "section contact 7\n{\n}\nsection speed_dial 1\n{\n}\n");
  ASSERT_TRUE(attendant->ReloadProperty(kPropSpeedDial));
  EXPECT_TRUE(attendant->HasSection(kPropAddressPatterns));
  EXPECT_TRUE(attendant->HasSection(kPropSpeedDial));
}

TEST_F(ExtensionDbTest, KeepsOnlyTheMostRecentlyFetched) {
  const size_t kKept = ExtensionManager::kKeptExtensions;
  auto put = [&](const std::string& text) {
    for (size_t i = 0; i < 3 * kKept; ++i)
      Put("user/" + std::to_string(i) + ".cfg",
          "section extension\n{\ndescription = " + text + "\n}\n");
  };
  auto fetch = [&](size_t from, size_t to) {  // others, none of them "0"
    for (size_t i = from; i < to; ++i)
      ASSERT_NE(nullptr, db_->GetExtension(kExtUser, std::to_string(i), false));
  };
  put("old");
  db_.reset(new ExtensionManager(Db(), false));
  Extension* first = db_->GetExtension(kExtUser, "0", true);
  ASSERT_NE(nullptr, first);
  put("new");  // what is read from now on says so

  fetch(1, kKept);
  EXPECT_EQ(3600, first->GetSipSettingsParams()->registerExpiry);  // still alive
  EXPECT_EQ(first, db_->GetExtension(kExtUser, "0", false));       // and made the most recent
  fetch(kKept, 2 * kKept - 1);
  EXPECT_EQ(nullptr, db_->GetExtension(kExtUser, "none", false));  // failures count for nothing
  EXPECT_EQ("old", db_->GetExtension("0", false)->GetText());     // not read again
  fetch(2 * kKept - 1, 3 * kKept - 1);
  EXPECT_EQ("new", db_->GetExtension(kExtUser, "0", false)->GetText());  // dropped, read afresh
}

TEST_F(ExtensionDbTest, BadFilesReadWhatIsWellFormed) {
  Put("user/201.cfg", std::string("\x7f\x45\x4c\x46\x02\x01\x01\0\0\0garbage", 18));
  Put("user/202.cfg",
      "section timeouts\n{\nno_answer_timeout = 25\ndial_timeout = soon\n}\n"
      "section timeouts\n{\nno_answer_timeout = 99\n}\n"
      "section codecs\n{\nvoice_codecs = G711A,G729\n");  // truncated: no closer
  Put("user/203.cfg", "section extension\n{\ndescription = " + std::string(1 << 20, 'x') + "\n}\n");
  root_.MakeDir("telephony/extensiondb/user/204.cfg");

  ExtensionManager db(Db(), true);
  Extension* garbage = db.GetExtension(kExtUser, "201", true);
  ASSERT_NE(nullptr, garbage);
  ASSERT_NE(nullptr, garbage->GetSipSettingsParams());
  EXPECT_EQ(3600, garbage->GetSipSettingsParams()->registerExpiry);

  Extension* odd = db.GetExtension(kExtUser, "202", true);
  ASSERT_NE(nullptr, odd);
  ASSERT_NE(nullptr, odd->GetTimeoutsParams());
  EXPECT_EQ(25, odd->GetTimeoutsParams()->noAnswerTimeout);  // the first section wins
  EXPECT_EQ(10, odd->GetTimeoutsParams()->dialTimeout);      // unparsable: default
  ASSERT_NE(nullptr, odd->GetCodecParams());
  EXPECT_EQ(2u, odd->GetCodecParams()->voiceCodecs.size());

  Extension* huge = db.GetExtension(kExtUser, "203", false);
  ASSERT_NE(nullptr, huge);
  EXPECT_EQ(size_t{1} << 20, huge->GetText().size());

  EXPECT_EQ(nullptr, db.GetExtension(kExtUser, "204", true));
}

TEST(ExtensionExampleTest, TheBundledOfficeLoads) {
  std::string db = std::string(CMCFG_SOURCE_DIR) + "/examples/telephony/extensiondb";
  ExtensionManager manager(db, true);
  ASSERT_NE(nullptr, manager.GetSystemExtension(true));
  size_t total = 0;
  for (ExtType type : {kExtAttendant, kExtUser, kExtPickup, kExtCallPark, kExtPaging}) {
    std::list<std::string> names;
    ASSERT_TRUE(manager.GetAllExtensionsNames(type, names)) << type;
    for (const std::string& name : names) {
      EXPECT_NE(nullptr, manager.GetExtension(type, name, true)) << name;
      ++total;
    }
  }
  EXPECT_GE(total, 17u);
  Extension* trunk = manager.GetExtension(kExtUser, "601", true);
  ASSERT_NE(nullptr, trunk);
  EXPECT_EQ("0/1-15;0/17-31", trunk->GetPstnAgentParams()->casChannels);
}

}  // namespace
