// The extension and attendant tables, the shared-extension list and the
// FXS ports bound to the loaded extensions.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/agent_fixture.h"

namespace {

class TablesTest : public testing_support::AgentTest {};

TEST_F(TablesTest, SlotsAreErasedKeptOrHandedBack) {
  CMAgent& agent = Start();
  agent.IncreaseBase();
  ASSERT_EQ(65u, agent.extensionBase.size());
  EXPECT_EQ(nullptr, agent.extensionBase[64]);
  agent.extensionBase[3] = new ExtensionData;
  agent.extensionBase[3]->name = "101";
  agent.ShareExtension("101", true, false);
  agent.EraseExtension(3, true, false);  // deleted, slot kept
  EXPECT_EQ(65u, agent.extensionBase.size());
  EXPECT_EQ(nullptr, agent.extensionBase[3]);
  EXPECT_TRUE(agent.generalData.sharedExtensions.empty());  // unshared on delete
  agent.EraseExtension(3, true, true);
  EXPECT_EQ(64u, agent.extensionBase.size());

  ExtensionData* record = new ExtensionData;
  agent.extensionBase[0] = record;
  ExtensionData* next = agent.extensionBase[1] = new ExtensionData;
  agent.EraseExtension(0, false, false);  // handed back: compact is ignored, the slot goes
  EXPECT_EQ(63u, agent.extensionBase.size());
  EXPECT_EQ(next, agent.extensionBase[0]);
  delete record;  // the caller's now
  agent.EraseExtension(63, true, true);  // past the end: ignored
  EXPECT_EQ(63u, agent.extensionBase.size());

  agent.attendants.push_back(new Attendant);
  agent.attendants.push_back(nullptr);
  agent.EraseAttendant(2);  // past the end
  EXPECT_EQ(2u, agent.attendants.size());
  agent.EraseAttendant(1);
  agent.EraseAttendant(0);
  EXPECT_TRUE(agent.attendants.empty());
}

TEST_F(TablesTest, SharedNamesAreUniqueAndKeepTheirMark) {
  CMAgent& agent = Start();
  // Each call (name, add, mark) and the list after it.
  const std::tuple<const char*, bool, bool, const char*> steps[] = {
      {"", true, true, ""},  // never added
      {"201", true, false, "201:0 "}, {"202", true, true, "201:0 202:1 "}, {"201", true, false, "201:0 202:1 "},
      {"201", true, true, "201:1 202:1 "}, {"201", true, false, "201:1 202:1 "},  // a false mark leaves it
      {"999", false, false, "201:1 202:1 "}, {"201", false, false, "202:1 "}};
  for (const auto& [name, add, mark, after] : steps) {
    agent.ShareExtension(name, add, mark);
    std::string list;
    for (const SharedExtension& s : agent.generalData.sharedExtensions)
      list += s.extension + ":" + std::to_string(s.flag) + " ";
    EXPECT_EQ(after, list) << name << add << mark;
  }
}

TEST_F(TablesTest, UnknownNamesAreNotLoadedAndDestroyDropsTheManagers) {
  CMAgent& agent = Start();
  EXPECT_NE(nullptr, agent.GetFxsLineMng());
  for (ExtType type : {kExtUser, kExtAttendant})
    for (const char* name : {"", "101", "../../etc/passwd"}) EXPECT_EQ(0, agent.LoadExtensionDB(name, type)) << name;
  agent.Destroy();
  agent.Destroy();  // twice is fine
  EXPECT_TRUE(!agent.GetFxsLineMng() && !agent.extensionManager && !agent.lineManager && !agent.encodingManager);
  EXPECT_EQ(0, agent.LoadExtensionDB("101", kExtUser));  // opened and closed per call
  EXPECT_EQ(nullptr, agent.extensionManager);
}

TEST_F(TablesTest, PortMovesFromOneExtensionToAnother) {
  root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\n");
  root_.Write("telephony/gateways.cfg",
              "section 1\n{\nname = local\ntype = 0\n}\nsection 2\n{\nname = far\ntype = 2\n}\n");
  root_.Write("telephony/linedb",
              "section binding 1/3\n{\nextension = 101\npresentation_id = 3\n}\nsection fxs 1/3\n{\n}\n");
  for (const char* name : {"101", "102"})
    root_.Write("telephony/extensiondb/user/" + std::string(name) + ".cfg", "");
  Start();
  ExtensionData *from = Find("101"), *to = Find("102");
  ASSERT_EQ(3u, from->line.lineId);
  from->line.callQueue.size = 5;
  root_.Write("telephony/linedb", "section binding 1/3\n{\nextension = 102\npresentation_id = 9\n}\n");
  ASSERT_TRUE(agent_->UpdateFxsData(1, 3));
  EXPECT_EQ(1u, to->line.gatewayId);
  EXPECT_EQ(3u, to->line.lineId);
  EXPECT_EQ(9u, to->line.presentationId);
  EXPECT_EQ(INACTIVE_PARTY, from->line.lineId);  // the one it left is cleared
  EXPECT_EQ(INACTIVE_PARTY, from->line.gatewayId);
  EXPECT_EQ(0, from->line.callQueue.size);
  EXPECT_EQ(1, from->line.lineFlag);
  EXPECT_TRUE(agent_->UpdateFxsData(2, 1));   // a remote port: nothing to do
  EXPECT_FALSE(agent_->UpdateFxsData(1, 4));  // no such port
  EXPECT_FALSE(agent_->UpdateFxsData(7, 1));  // no such gateway
  EXPECT_NE(std::string::npos, Log().find("UpdateFxsData: failed to load data for FXS MG{7}<1>.\n"));
}

}  // namespace
