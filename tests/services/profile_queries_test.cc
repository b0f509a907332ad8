// The table loaders and the per-extension profile queries, over real roots.
#include <gtest/gtest.h>

#include <algorithm>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_fixture.h"

namespace {

const char kGeneral[] =
    "section logging\n{\nlog_enabled = 1\n}\n"
    "section system\n{\nsystem_prefix = pbx-\nvoice_codecs = G711A,G729\n}\n";

const char kUser[] =
    "section extension\n{\ndescription = Front desk\n}\n"
    "section sip\n{\nauth_name = auth101\nuser_name = desk\nhost = 10.0.0.1\nport = 5070\n}\n"
    "section personal\n{\nfull_name = Ada\npassword = 12*#9\nuser_class = 4\nlanguage = 2\n"
    "remote_access = 7\ntos_profile = voice\nqueue_enabled = 1\nqueue_size = 1000\n}\n"
    "section services\n{\ncall_waiting = 0\ndo_not_disturb = 1\nvoice_mail_mode = 2\n"
    "voice_mail_box = box7\nremote_control = 1\nfax_mode_b = 1\nmodem_mode = 3\n"
    "intrusion_allowed = 0\nanonymous_call_rejection = 1\n}\n"
    "section timeouts\n{\nno_answer_timeout = 25\n}\n"
    "section busy_redial\n{\ninterval = 20\nperiod_minutes = 5\n}\n"
    "section auto_call\n{\nenabled = 1\ndestination = 200\n}\n"
    "section codecs\n{\nvoice_codecs = G729a,G711U\n}\n";

class ProfileQueriesTest : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", kGeneral);
    root_.Write("telephony/tos.cfg", "section 1\n{\nname = voice\nsignaling_tos = 0x68\n"
                                     "media_tos = 0xB8\n}\n");
    root_.Write("telephony/extensiondb/user/101.cfg", kUser);
  }

  ExtensionData* Find(const std::string& name) {
    for (ExtensionData* e : agent_->extensionBase)
      if (e != nullptr && e->name == name) return e;
    return nullptr;
  }
  std::string Log() const { return root_.Read("cmcfg.log"); }
};

TEST_F(ProfileQueriesTest, UserLoadFillsEveryProperty) {
  Start();
  ExtensionData* e = Find("101");
  ASSERT_NE(nullptr, e);
  EXPECT_EQ("Front desk", e->description);
  // SIP: the user name gets the system prefix and time digits.
  EXPECT_EQ(0u, e->sip.userName.rfind("pbx-desk", 0)) << e->sip.userName;
  EXPECT_GT(e->sip.userName.size(), std::string("pbx-desk").size());
  EXPECT_EQ("auth101", e->sip.authName);
  EXPECT_EQ("10.0.0.1", e->sip.host);
  EXPECT_EQ("5070", e->sip.port);
  // Personal data.
  EXPECT_EQ("Ada", e->displayName);
  EXPECT_EQ(4, e->userClass);
  EXPECT_EQ(2, e->language);
  EXPECT_EQ((KeySequence{0x101, 0x102, 0x12A, 0x109}), e->password.keys);
  EXPECT_EQ(7, e->line.remote.personalValue);
  EXPECT_EQ(255, e->line.callQueue.size);
  EXPECT_EQ(0x68, e->line.tos.signaling);
  EXPECT_EQ(0xB8, e->line.tos.media);
  // Services and time-outs.
  EXPECT_EQ(0, e->callWaiting);
  EXPECT_EQ(1, e->doNotDisturb);
  EXPECT_EQ(0, e->intrusionAllowed);
  EXPECT_EQ(1, e->anonymousRejection);
  EXPECT_TRUE(e->IsMailboxOn(true));
  EXPECT_TRUE(e->rc.IsExtPolicyOn(0x02));
  EXPECT_TRUE(e->line.fax.IsFaxOn());
  EXPECT_EQ(3, e->line.modem.modemMode);
  EXPECT_EQ(25, e->noAnswerTimeout);
  EXPECT_EQ(60, e->callParkTimeout);  // the section's default
  EXPECT_EQ(20u, e->redialInterval);
  EXPECT_EQ(300u, e->redialPeriod);
  EXPECT_EQ(1, e->autoCall.enabled);
  EXPECT_EQ("200", e->autoCall.destination);
  ASSERT_EQ(2u, e->line.voiceCodecs.size());
  EXPECT_EQ("G729", e->line.voiceCodecs.front().name);

  const std::string log = Log();
  EXPECT_NE(std::string::npos, log.find("GetServicesTimeouts: extension 101.\n"));
  EXPECT_NE(std::string::npos, log.find("GetAutoRedialData: extension 101, interval = 20, period = 300.\n"));
  EXPECT_NE(std::string::npos, log.find("GetAutoCallData: extension 101, service is on, destination - 200.\n"));
  EXPECT_NE(std::string::npos, log.find("**************** 101 ****************\n\n"));
  EXPECT_EQ(std::string::npos, log.find("failed to load")) << log;
}

TEST_F(ProfileQueriesTest, GroupsAndParksTakeTheirOwnProperties) {
  root_.Write("telephony/extensiondb/callpark/400.cfg",
              "section call_park\n{\ntimeout_minutes = 3\n}\n");
  root_.Write("telephony/extensiondb/pickup/300.cfg",
              "section pickup_group\n{\nmembers = 101,102\n}\n"
              "section access_list\n{\nentry_1 = 5,1,0,100\nentry_2 = 10,1,1,sip:a@b,c\n"
              "entry_3 = 5,0,0,103\n}\n");
  Start();
  EXPECT_EQ(180, Find("400")->callParkTimeout);
  EXPECT_NE(std::string::npos, Log().find("GetCallParkData: extension 400, timeout - 180 sec.\n"));

  ExtensionData* group = Find("300");
  EXPECT_EQ((std::list<std::string>{"101", "102"}), group->groupMembers);
  std::vector<std::string> order;
  for (const AccessData& a : group->accessList) order.push_back(a.address);
  // Descending by priority; equal priorities keep the file's order.
  EXPECT_EQ((std::vector<std::string>{"sip:a@b,c", "100", "103"}), order);
  // No codecs section: read as defaults, not as a failure.
  EXPECT_EQ(std::string::npos, Log().find("failed to load")) << Log();
}

TEST_F(ProfileQueriesTest, LoadersKeepTheirOrderAndTypes) {
  root_.Write("telephony/extensiondb/paging/500.cfg", "");
  root_.Write("telephony/extensiondb/pickup/300.cfg", "");
  root_.Write("telephony/extensiondb/user/99.cfg", "");
  Start();
  std::vector<std::string> loaded;
  for (const ExtensionData* e : agent_->extensionBase)
    if (e) loaded.push_back(e->name + ":" + std::to_string(e->type));
  EXPECT_EQ((std::vector<std::string>{"99:1", "101:1", "300:2", "500:4"}), loaded);
  // The table starts with its empty slots.
  EXPECT_EQ(nullptr, agent_->extensionBase[63]);
  EXPECT_NE(nullptr, agent_->extensionBase[64]);
}

TEST_F(ProfileQueriesTest, QueriesAfterDestroyOpenTheirOwnManager) {
  CMAgent& agent = Start();
  agent.Destroy();
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section sip\n{\nuser_name = moved\nhost = 10.0.0.9\n}\n"
              "section call_park\n{\ntimeout_minutes = 2\n}\n");
  ExtensionData* e = Find("101");
  ASSERT_TRUE(agent.GetSipData(e, nullptr, nullptr));
  EXPECT_EQ("10.0.0.9", e->sip.host);
  std::string given = "given";
  ASSERT_TRUE(agent.GetSipData(e, nullptr, &given));
  EXPECT_EQ(0u, e->sip.userName.rfind("pbx-given", 0));
  // A user has no call-park property, whatever its file holds.
  const auto timeout = e->callParkTimeout;
  EXPECT_FALSE(agent.GetCallParkData(e, nullptr));
  EXPECT_EQ(timeout, e->callParkTimeout);
  EXPECT_EQ(nullptr, agent.extensionManager);

  // A late load after Destroy reads the file through a manager of its own.
  EXPECT_EQ(1, agent.LoadExtensionDB("101", kExtUser));
  EXPECT_EQ("10.0.0.9", agent.extensionBase.back()->sip.host);
  EXPECT_EQ(nullptr, agent.extensionManager);
}

TEST_F(ProfileQueriesTest, MissingExtensionFailsAndLeavesTheRecord) {
  CMAgent& agent = Start();
  ExtensionData ghost;
  ghost.name = "777";
  ghost.callParkTimeout = 42;
  EXPECT_FALSE(agent.GetCallParkData(&ghost, nullptr));
  EXPECT_FALSE(agent.GetSipData(&ghost, nullptr, nullptr));
  EXPECT_EQ(42, ghost.callParkTimeout);
  EXPECT_TRUE(ghost.sip.host.empty());
  agent.Destroy();
  EXPECT_FALSE(agent.GetAutoCallData(&ghost, nullptr));
  const std::string log = Log();
  EXPECT_NE(std::string::npos, log.find("GetCallParkData: failed to load extension 777.\n"));
  EXPECT_NE(std::string::npos, log.find("GetAutoCallData: failed to load extension 777.\n"));

  size_t before = agent.extensionBase.size();
  EXPECT_EQ(0, agent.LoadExtensionDB("777", kExtUser));
  EXPECT_EQ(0, agent.LoadExtensionDB("", kExtUser));
  EXPECT_EQ(before, agent.extensionBase.size());
  EXPECT_NE(std::string::npos, Log().find("*** LoadExtensionDB: failed to load extension 777 ***\n"));
}

TEST_F(ProfileQueriesTest, BrokenFilesLoadWhatTheyHold) {
  // A truncated file and one of garbage: each loads what is well formed.
  root_.Write("telephony/extensiondb/user/102.cfg", "section sip\n{\nhost = 10.0.0.2\n");
  root_.Write("telephony/extensiondb/user/103.cfg", std::string("\x01\xff\x00garbage\n}{\n", 14));
  root_.MakeDir("telephony/extensiondb/user/104.cfg");  // a folder is no extension
  Start();
  ASSERT_NE(nullptr, Find("102"));
  EXPECT_EQ("10.0.0.2", Find("102")->sip.host);
  ASSERT_NE(nullptr, Find("103"));
  EXPECT_EQ(nullptr, Find("104"));
  ASSERT_NE(nullptr, Find("101"));
  EXPECT_EQ("10.0.0.1", Find("101")->sip.host);
}

TEST_F(ProfileQueriesTest, AttendantsTakeGeneralPersonalAndSipData) {
  root_.Write("telephony/extensiondb/system.cfg", "section database\n{\nsystem_attendant = 100\n}\n");
  root_.Write("telephony/extensiondb/attendant/100.cfg",
              "section attendant\n{\nqueue_size = 9\n}\n"
              "section personal\n{\nfull_name = Operator\n}\n"
              "section sip\n{\nuser_name = op\nhost = 10.0.0.5\n}\n"
              "section codecs\n{\nextra_voice_codecs = G722\n}\n");
  root_.Write("telephony/extensiondb/attendant/110.cfg", "");
  CMAgent& agent = Start();
  ASSERT_EQ(2u, agent.attendants.size());
  Attendant* console = agent.attendants[0];
  EXPECT_EQ(9, console->queueSize);
  EXPECT_EQ("Operator", console->displayName);
  // No primary voice codecs: the system's default list, then its own extra.
  std::vector<std::string> voice;
  for (const CodecInfo& c : console->voiceCodecs) voice.push_back(c.name);
  EXPECT_EQ((std::vector<std::string>{"G711A", "G729", "G722"}), voice);
  // The bare attendant has no codecs section at all: still the default list.
  EXPECT_EQ(2u, agent.attendants[1]->voiceCodecs.size());

  agent.Destroy();
  root_.Write("telephony/extensiondb/attendant/100.cfg",
              "section attendant\n{\nqueue_size = 4\n}\nsection personal\n{\nfull_name = Night\n}\n"
              "section sip\n{\nhost = 10.0.0.6\n}\n");
  EXPECT_TRUE(agent.GetAttGeneralParams(console));
  EXPECT_TRUE(agent.GetAttPersonalInfo(console));
  EXPECT_TRUE(agent.GetAttIpData(console, true, nullptr));
  EXPECT_EQ(4, console->queueSize);
  EXPECT_EQ("Night", console->displayName);
  EXPECT_EQ("10.0.0.6", console->sip.host);
  // No user name: the agent's default stem with the system prefix.
  EXPECT_EQ(0u, console->sip.userName.rfind("kaIfArIkNiCkpbx-", 0)) << console->sip.userName;
  Attendant stranger;
  stranger.name = "999";
  EXPECT_FALSE(agent.GetAttGeneralParams(&stranger));
  EXPECT_NE(std::string::npos, Log().find("GetAttGeneralParams: failed to load extension 999.\n"));
  EXPECT_EQ(nullptr, agent.extensionManager);
}

}  // namespace
