// The settings and block files of telephony/ through their accessors: shared
// instances, what a save writes (and keeps of what others wrote), and what
// bad, missing and shipped files give.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <list>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/blocks/authorized_phones_accessor.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/blocks_accessor_base.h"
#include "platform/blocks/fxs_data_accessor.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/blocks/sys_message_accessor.h"
#include "platform/blocks/tos_params_accessor.h"
#include "tests/support/platform_fixture.h"

namespace {

// Any block type will do for the base class; gateways are small.
using Notes = BlocksAccessorBase<GatewayBlock>;

// The files of the accessors that take createIfMissing, in the order
// OpenAndCloseAll opens them.
const char* const kFlaggedFiles[] = {"general.cfg", "paths.cfg", "gateways.cfg", "fxs.cfg", "tos.cfg",
                                     "authorized_phones.cfg", "ringpatterns.cfg", "log_login.cfg"};
constexpr int kFlagged = 8;

// Drops one reference of every accessor that takes the flag but
// LogLoginAccessor (whose close wants the instance); harmless for those not open.
void CloseAll() {
  GeneralSettingsAccessor::CloseInstance();
  GeneralPaths::CloseInstance();
  GatewayAccessor::CloseInstance();
  FxsDataAccessor::CloseInstance();
  TosParamsAccessor::CloseInstance();
  AuthorizedPhonesAccessor::CloseInstance();
  RingPatternParams::CloseInstance();
}

// Opens every accessor that takes the flag, closes them again and returns
// how many gave an instance.
int OpenAndCloseAll(bool create) {
  int opened = (GeneralSettingsAccessor::GetInstance(create) != nullptr) +
               (GeneralPaths::GetInstance(create) != nullptr) +
               (GatewayAccessor::GetInstance(create) != nullptr) +
               (FxsDataAccessor::GetInstance(create) != nullptr) +
               (TosParamsAccessor::GetInstance(create) != nullptr) +
               (AuthorizedPhonesAccessor::GetInstance(create) != nullptr) +
               (RingPatternParams::GetInstance(create) != nullptr);
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(create);
  CloseAll();
  LogLoginAccessor::CloseInstance(login);
  return opened + (login != nullptr);
}

class BlocksTest : public testing_support::PlatformTest {
 protected:
  BlocksTest() { root_.MakeDir("telephony"); }
  std::string NotesPath() const { return root_.Path("telephony/notes.cfg"); }
  cfg::Document ReadBack(const std::string& name) {
    cfg::Document doc;
    EXPECT_TRUE(cfg::LoadDocument(root_.Path("telephony/" + name), &doc).ok());
    return doc;
  }
  static GatewayBlock* Add(Notes& notes, const std::string& name) {
    std::unique_ptr<GatewayBlock> block = notes.CreateBlock();
    block->name = name;
    return notes.InsertBlock(std::move(block));
  }
};

TEST_F(BlocksTest, InstancesAreSharedAndTheFileIsReadAgainOnlyAfterTheLastClose) {
  GeneralSettingsAccessor* settings = GeneralSettingsAccessor::GetInstance(true);  // no file
  EXPECT_EQ(settings, GeneralSettingsAccessor::GetInstance(false));  // open: whatever the flag
  GeneralSettingsAccessor::CloseInstance();
  GeneralSettingsAccessor::CloseInstance();
  EXPECT_EQ(nullptr, GeneralSettingsAccessor::GetInstance(false));
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(true);
  LogLoginAccessor::CloseInstance(nullptr);  // what a failed GetInstance hands back
  EXPECT_EQ(login, LogLoginAccessor::GetInstance(false));
  LogLoginAccessor::CloseInstance(login);
  LogLoginAccessor::CloseInstance(login);
  EXPECT_EQ(nullptr, LogLoginAccessor::GetInstance(false));

  GatewayAccessor::CloseInstance();  // without an instance: ignored, not counted
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = old\n}\n");
  GatewayAccessor* first = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, first);
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = new\n}\n");
  EXPECT_EQ(first, GatewayAccessor::GetInstance(false));
  GatewayAccessor::CloseInstance();
  EXPECT_EQ("old", GatewayAccessor::GetInstance(false)->GetBlock(1)->name);  // one reference left
  GatewayAccessor::CloseInstance();
  GatewayAccessor::CloseInstance();
  GatewayAccessor* fresh = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fresh);
  EXPECT_EQ("new", fresh->GetBlock(1)->name);
  GatewayAccessor::CloseInstance();

  testing_support::TempRoot other;  // a new instance follows the root of the moment
  other.Write("telephony/log_login.cfg", "section login\n{\nlogin_trace = 2\n}\n");
  login = LogLoginAccessor::GetInstance(false);
  EXPECT_EQ(2, login->loginTrace);
  LogLoginAccessor::CloseInstance(login);
  {
    GeneralSettingsAccessor::Lock lock;  // may cover the last close
    ASSERT_NE(nullptr, GeneralSettingsAccessor::GetInstance(true));
    GeneralSettingsAccessor::CloseInstance();
  }
}

// Threads share one instance; loads and reads under its lock see whole
// files while another process replaces the file.
TEST_F(BlocksTest, ThreadsShareOneInstanceAndSeeWholeFiles) {
  auto replace = [&](char version) {  // gateways 1 and 2 named after the file's version
    std::string text;
    for (char id : {'1', '2'}) text += std::string("section ") + id + "\n{\nname = " + version + id + "\n}\n";
    root_.Write("telephony/gateways.next", text);
    EXPECT_EQ(0, std::rename(root_.Path("telephony/gateways.next").c_str(),
                             root_.Path("telephony/gateways.cfg").c_str()));
  };
  replace('a');
  GatewayAccessor* held = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, held);
  std::atomic<bool> written{false};
  std::atomic<int> torn{0}, mismatches{0};
  std::thread writer([&] {
    for (int i = 0; i < 100; ++i) replace(i % 2 ? 'a' : 'b');
    written = true;
  });
  auto use = [&](bool reload) {
    for (int i = 0; i < 50 || !written; ++i) {
      if (GatewayAccessor::GetInstance(false) != held) ++mismatches;
      GatewayAccessor::CloseInstance();
      GatewayAccessor::Lock lock;
      if (reload && !held->Load()) ++torn;
      const GatewayBlock* one = held->GetBlock(1);
      const GatewayBlock* two = held->GetBlock(2);
      if (one == nullptr || two == nullptr || one->name[0] != two->name[0]) ++torn;
    }
  };
  std::thread loader(use, true), reader(use, false);
  writer.join();
  loader.join();
  reader.join();
  EXPECT_EQ(0, torn.load());
  EXPECT_EQ(0, mismatches.load());
  GatewayAccessor::CloseInstance();
}

TEST_F(BlocksTest, BlocksAndSettingsSurviveSaveAndReopen) {
  AuthorizedPhonesAccessor* phones = AuthorizedPhonesAccessor::GetInstance(true);
  std::unique_ptr<AuthorizedPhoneBlock> phone = phones->CreateBlock();
  EXPECT_EQ(std::make_tuple(2, 2), std::make_tuple(phone->phoneType, phone->lineCount));
  *phone = AuthorizedPhoneBlock{phone->id, "", "00:11:22:33:44:55", "201", 3, 4, "Desk", -1, 17};
  AuthorizedPhoneBlock* stored = phones->InsertBlock(std::move(phone));
  ASSERT_NE(nullptr, stored);
  stored->extension = "202";
  ASSERT_TRUE(phones->SaveBlock(stored));
  const AuthorizedPhoneBlock written = *stored;
  GatewayAccessor* gateways = GatewayAccessor::GetInstance(true);
  std::unique_ptr<GatewayBlock> remote = gateways->CreateBlock();
  *remote = GatewayBlock{7, "branch", GatewayBlock::kRemoteMediaGateway, "10.0.0.7"};
  ASSERT_TRUE(gateways->AddBlock(std::move(remote)));
  RingPatternParams* patterns = RingPatternParams::GetInstance(true);
  std::unique_ptr<RingPatternBlock> triple = patterns->CreateBlock();
  triple->name = "triple";
  triple->cadence = {400, 200, 400, 200, 400, 2000};
  ASSERT_TRUE(patterns->AddBlock(std::move(triple)));
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(true);
  s->voiceCodecs = {"G711A", "G711U", "G729"};
  s->maxExtensions = 4000000000u;
  s->dialTimeout = -3;
  ASSERT_TRUE(s->Save());
  CloseAll();

  EXPECT_EQ("G711A,G711U,G729", ReadBack("general.cfg").Find("system")->Get("voice_codecs"));
  phones = AuthorizedPhonesAccessor::GetInstance(false);
  ASSERT_EQ(1u, phones->GetBlockCount());
  const AuthorizedPhoneBlock* read = phones->GetBlock(written.id);
  EXPECT_EQ(std::tie(written.phoneAddress, written.extension, written.phoneType, written.lineCount,
                     written.userName, written.permissions, written.loginTime),
            std::tie(read->phoneAddress, read->extension, read->phoneType, read->lineCount,
                     read->userName, read->permissions, read->loginTime));
  EXPECT_EQ("00:11:22:33:44:55", read->name);
  EXPECT_TRUE(GatewayAccessor::GetInstance(false)->GetBlock(7)->IsRemote());
  EXPECT_EQ("10.0.0.7", GatewayAccessor::GetInstance(false)->GetBlock(7)->address);
  GatewayAccessor::CloseInstance();
  EXPECT_EQ((std::vector<unsigned long>{400, 200, 400, 200, 400, 2000}),
            RingPatternParams::GetInstance(false)->GetBlockByName("triple")->cadence);
  s = GeneralSettingsAccessor::GetInstance(false);
  EXPECT_EQ(std::make_tuple(4000000000u, -3), std::make_tuple(s->maxExtensions, s->dialTimeout));
  CloseAll();
}

TEST_F(BlocksTest, ReloadStartsFromDefaultsAndSaveWritesOnlyWhatChangedHere) {
  root_.Write("telephony/general.cfg",
              "section pstn\n{\nfxo_ports = 8\nisdn_interfaces = two\n}\n"
              "section limits\n{\nmax_hold_calls = 70000\n}\n");
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  EXPECT_EQ(std::make_tuple(8, 1u, 5), std::make_tuple(s->fxoPorts, s->isdnInterfaces, static_cast<int>(s->maxHoldCalls)));
  root_.Write("telephony/general.cfg", "section pstn\n{\n}\n");
  s->fxoPorts = 30;
  ASSERT_TRUE(s->Reload());
  EXPECT_EQ(2, s->fxoPorts);  // the key is gone: default again
  ASSERT_EQ(0, std::remove(root_.Path("telephony/general.cfg").c_str()));
  s->fxoPorts = 30;
  EXPECT_FALSE(s->Reload());
  EXPECT_EQ(30, s->fxoPorts);  // a failed reload changes nothing
  GeneralSettingsAccessor::CloseInstance();

  root_.Write("telephony/fxs.cfg", "section fxs\n{\nring_voltage = 50\nimpedance = 600\n}\n");
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fxs);
  EXPECT_EQ(50, fxs->ringVoltage);
  root_.Write("telephony/fxs.cfg",  // another program's save meanwhile
              "section fxs\n{\nring_voltage = 60\nimpedance = 600\nflash_time_max = long\n}\n"
              "section vendor\n{\nboard = x2\n}\n");
  fxs->ringCadence = {400, 200, 400, 2000};
  ASSERT_TRUE(fxs->Save());
  FxsDataAccessor::CloseInstance();
  EXPECT_EQ("section fxs\n{\nring_voltage = 60\nimpedance = 600\nflash_time_max = long\n"
            "ring_cadence = 400,200,400,2000\n}\nsection vendor\n{\nboard = x2\n}\n",
            root_.Read("telephony/fxs.cfg"));
}

TEST_F(BlocksTest, ACodecNameWithACommaRefusesTheWholeSave) {
  const char kFile[] = "section system\n{\nvoice_codecs = G711A,G729\n}\n";
  root_.Write("telephony/general.cfg", kFile);
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  s->maxHoldCalls = 9;  // a good change in the same save is not written either
  s->voiceCodecs = {"G711U", "G7,23"};
  EXPECT_FALSE(s->Save());
  EXPECT_EQ(kFile, root_.Read("telephony/general.cfg"));
  ASSERT_TRUE(s->Reload());
  EXPECT_EQ((std::list<std::string>{"G711A", "G729"}), s->voiceCodecs);
  s->extraVoiceCodecs = {"G723", "iLBC"};
  EXPECT_TRUE(s->Save());
  GeneralSettingsAccessor::CloseInstance();
  EXPECT_EQ("G723,iLBC", ReadBack("general.cfg").Find("system")->Get("extra_voice_codecs"));
}

TEST_F(BlocksTest, TosBytesAreReadInDecimalOrHexAndWrittenInHex) {
  root_.Write("telephony/tos.cfg",
              "section 1\n{\nname = voice\nsignaling_tos = 0x68\nmedia_tos = 184\n}\n"
              "section 2\n{\nname = bad\nsignaling_tos = 300\nmedia_tos = ef\n}\n");
  TosParamsAccessor* tos = TosParamsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, tos);
  TosBlock* voice = tos->GetBlockByName("voice");
  ASSERT_NE(nullptr, voice);
  EXPECT_EQ(std::make_tuple(0x68, 0xB8), std::make_tuple(voice->signalingTos, voice->mediaTos));
  EXPECT_EQ(0, tos->GetBlockByName("bad")->signalingTos);
  EXPECT_EQ(nullptr, tos->GetBlockByName("Voice"));
  voice->signalingTos = 0x2E;  // a changed value is written in hex; the rest stays as written
  ASSERT_TRUE(tos->SaveBlock(voice));
  TosParamsAccessor::CloseInstance();
  EXPECT_EQ("0x2E", ReadBack("tos.cfg").Find("1")->Get("signaling_tos"));
  EXPECT_EQ("184", ReadBack("tos.cfg").Find("1")->Get("media_tos"));
}

TEST_F(BlocksTest, SysMessageNamesAreLookedUpByNumber) {
  root_.Write("telephony/sysmessages.cfg",
              "section 0\n{\nname = System started\n}\nsection 12\n{\nname = Line busy\n}\n"
              "section 12\n{\nname = shadowed\n}\nsection -1\n{\nname = negative\n}\n"
              "section 13\n{\ntext = no name key\n}\nsection 2147483648\n{\nname = big\n}\n"
              "section 2147483647\n{\nname = largest\n}\n");
  SysMessageAccessor* messages = SysMessageAccessor::GetInstance();
  ASSERT_NE(nullptr, messages);
  std::string name = "untouched";
  EXPECT_FALSE(messages->GetSysMessageName(13, name));
  EXPECT_FALSE(messages->GetSysMessageName(-1, name));
  EXPECT_EQ("untouched", name);
  EXPECT_TRUE(messages->GetSysMessageName(12, name));
  EXPECT_EQ("Line busy", name);
  EXPECT_TRUE(messages->GetSysMessageName(2147483647, name));
  EXPECT_EQ("largest", name);
  EXPECT_EQ(3u, messages->GetSysMessageCount());
  SysMessageAccessor::CloseInstance();
}

TEST_F(BlocksTest, MissingFilesGiveDefaultsOnlyWhenAskedTo) {
  EXPECT_EQ(0, OpenAndCloseAll(false));
  EXPECT_EQ(kFlagged, OpenAndCloseAll(true));
  for (const char* name : kFlaggedFiles) root_.MakeDir(std::string("telephony/") + name);
  root_.MakeDir("telephony/sysmessages.cfg");
  EXPECT_EQ(0, OpenAndCloseAll(false));
  EXPECT_EQ(nullptr, SysMessageAccessor::GetInstance());
  SysMessageAccessor::CloseInstance();  // harmless without an instance
  GatewayAccessor* gateways = GatewayAccessor::GetInstance(true);
  EXPECT_EQ(0u, gateways->GetBlockCount());
  EXPECT_FALSE(gateways->AddBlock(gateways->CreateBlock()));  // never replaces the folder
  GatewayAccessor::CloseInstance();
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(true);
  EXPECT_EQ(45, fxs->ringVoltage);
  EXPECT_FALSE(fxs->Save());
  FxsDataAccessor::CloseInstance();
}

TEST_F(BlocksTest, WritesKeepWhatOthersWroteMeanwhile) {
  root_.Write("telephony/notes.cfg",
              "# notes\nsection meta\n{\nowner = ops\n}\nsection 1\n{\nname = a\nextra = kept\n}\n");
  Notes mine(NotesPath()), theirs(NotesPath());
  ASSERT_TRUE(mine.Load());
  ASSERT_TRUE(theirs.Load());
  GatewayBlock* their_block = Add(theirs, "theirs");
  ASSERT_NE(nullptr, their_block);
  EXPECT_EQ(2u, their_block->id);
  GatewayBlock* a = mine.GetBlock(1);
  a->type = 9;
  EXPECT_TRUE(mine.SaveBlock(a));
  GatewayBlock* added = Add(mine, "mine");  // id 2 is taken in the file by now
  ASSERT_NE(nullptr, added);
  EXPECT_EQ(3u, added->id);
  ASSERT_TRUE(mine.Load());
  EXPECT_EQ(3u, mine.GetBlockCount());
  EXPECT_EQ(9, mine.GetBlock(1)->type);
  EXPECT_EQ("theirs", mine.GetBlock(2)->name);
  EXPECT_EQ(0u, root_.Read("telephony/notes.cfg").find(
                    "# notes\nsection meta\n{\nowner = ops\n}\nsection 1\n{\nname = a\nextra = kept\n"));
}

TEST_F(BlocksTest, BlockIdsAreWholeDecimalNumbersAndDeleteRemovesEveryCopy) {
  root_.Write("telephony/notes.cfg",
              "section 4\n{\nname = first\n}\nsection 4\n{\nname = shadow\n}\nsection 5\n{\nname = five\n}\n"
              "section 18446744073709551615\n{\nname = largest\n}\nsection 18446744073709551616\n{\n}\n"
              "section 0x6\n{\n}\nsection 7 \n{\n}\nsection -8\n{\n}\n");
  Notes notes(NotesPath());
  ASSERT_TRUE(notes.Load());
  EXPECT_EQ(4u, notes.GetBlockCount());  // 4, 5, the largest and "7 " read as "7"
  EXPECT_EQ("first", notes.GetBlock(4)->name);  // the first section of an id wins
  EXPECT_EQ("largest", notes.GetBlock(ULONG_MAX)->name);
  unsigned long id = 1;
  EXPECT_FALSE(blocks::ParseBlockId("", &id));
  EXPECT_TRUE(blocks::ParseBlockId("0", &id));
  EXPECT_EQ(0u, id);
  EXPECT_TRUE(notes.DeleteBlock(4));
  EXPECT_FALSE(notes.DeleteBlock(4));
  EXPECT_EQ(nullptr, notes.GetBlock(4));
  ASSERT_TRUE(notes.Load());
  EXPECT_EQ(nullptr, notes.GetBlock(4));
  EXPECT_EQ("five", notes.GetBlock(5)->name);
}

TEST_F(BlocksTest, FailedWritesChangeNothing) {
  Notes notes(NotesPath());
  GatewayBlock stray;
  EXPECT_FALSE(notes.SaveBlock(&stray));  // not one of its blocks
  EXPECT_FALSE(notes.AddBlock(nullptr));
  EXPECT_FALSE(root_.Exists("telephony/notes.cfg"));
  Notes nowhere(root_.Path("no-such-folder/notes.cfg"));
  EXPECT_TRUE(nowhere.Load());
  EXPECT_FALSE(nowhere.AddBlock(nowhere.CreateBlock()));
  EXPECT_EQ(0u, nowhere.GetBlockCount());
}

TEST_F(BlocksTest, ConcurrentAddsFromTwoProcessesAllSurvive) {
  const int kPerProcess = 20;
  int start[2];
  ASSERT_EQ(0, pipe(start));
  pid_t children[2];
  for (int c = 0; c < 2; ++c) {
    children[c] = fork();
    ASSERT_GE(children[c], 0);
    if (children[c] == 0) {
      close(start[1]);
      Notes notes(NotesPath());
      bool ok = notes.Load();  // both start from the same, empty file
      char byte;
      ok = ok && read(start[0], &byte, 1) == 0;  // wait until the parent lets go
      for (int i = 0; i < kPerProcess && ok; ++i)
        ok = Add(notes, "p" + std::to_string(c) + "-" + std::to_string(i)) != nullptr;
      _exit(ok ? 0 : 1);
    }
  }
  close(start[0]);
  close(start[1]);
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  Notes notes(NotesPath());
  ASSERT_TRUE(notes.Load());
  std::set<std::string> names;
  for (GatewayBlock* block : notes.GetAllBlocks()) names.insert(block->name);
  EXPECT_EQ(2u * kPerProcess, names.size());
}

}  // namespace
