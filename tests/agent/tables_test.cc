#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

class TablesTest : public AgentTest {};

TEST_F(TablesTest, EmptyRootGivesSixtyFourEmptySlots) {
  CMAgent& agent = Start();
  ASSERT_EQ(64u, agent.extensionBase.size());
  for (ExtensionData* slot : agent.extensionBase) EXPECT_EQ(nullptr, slot);
  EXPECT_TRUE(agent.attendants.empty());
  EXPECT_GE(agent.attendants.capacity(), 16u);
}

TEST_F(TablesTest, EraseWithoutCompactKeepsTheSlot) {
  CMAgent& agent = Start();
  agent.extensionBase[3] = new ExtensionData;
  agent.extensionBase[3]->name = "101";
  agent.ShareExtension("101", true, false);

  agent.EraseExtension(3, true, false);
  EXPECT_EQ(64u, agent.extensionBase.size());
  EXPECT_EQ(nullptr, agent.extensionBase[3]);
  EXPECT_TRUE(agent.generalData.sharedExtensions.empty());  // unshared on delete

  agent.EraseExtension(3, true, true);
  EXPECT_EQ(63u, agent.extensionBase.size());
}

TEST_F(TablesTest, EraseWithoutDeleteHandsTheRecordBack) {
  CMAgent& agent = Start();
  ExtensionData* record = new ExtensionData;
  agent.extensionBase[0] = record;
  agent.extensionBase[1] = new ExtensionData;
  ExtensionData* next = agent.extensionBase[1];
  agent.EraseExtension(0, false, false);  // compact is ignored: the slot goes
  EXPECT_EQ(63u, agent.extensionBase.size());
  EXPECT_EQ(next, agent.extensionBase[0]);
  record->name = "still alive";  // the caller owns it now
  delete record;
}

TEST_F(TablesTest, EraseAttendantDeletesAndCloses) {
  CMAgent& agent = Start();
  agent.attendants.push_back(new Attendant);
  agent.attendants.push_back(nullptr);
  agent.EraseAttendant(1);
  agent.EraseAttendant(0);
  EXPECT_TRUE(agent.attendants.empty());
}

TEST_F(TablesTest, ShareExtensionKeepsNamesUnique) {
  CMAgent& agent = Start();
  std::list<SharedExtension>& shared = agent.generalData.sharedExtensions;
  agent.ShareExtension("", true, true);
  EXPECT_TRUE(shared.empty());

  agent.ShareExtension("201", true, false);
  agent.ShareExtension("202", true, true);
  agent.ShareExtension("201", true, false);
  ASSERT_EQ(2u, shared.size());
  EXPECT_EQ(0, shared.front().flag);
  EXPECT_EQ(1, shared.back().flag);

  agent.ShareExtension("201", true, true);  // marks, adds nothing
  EXPECT_EQ(2u, shared.size());
  EXPECT_EQ(1, shared.front().flag);
  agent.ShareExtension("201", true, false);  // a false mark leaves the flag
  EXPECT_EQ(1, shared.front().flag);

  agent.ShareExtension("999", false, false);  // unknown: nothing happens
  agent.ShareExtension("201", false, false);
  ASSERT_EQ(1u, shared.size());
  EXPECT_EQ("202", shared.front().extension);
}

TEST_F(TablesTest, UnknownNamesAreNotLoaded) {
  CMAgent& agent = Start();
  EXPECT_EQ(0, agent.LoadExtensionDB("", kExtUser));
  EXPECT_EQ(0, agent.LoadExtensionDB("", kExtAttendant));
  EXPECT_EQ(0, agent.LoadExtensionDB("101", kExtUser));
  EXPECT_EQ(0, agent.LoadAttendantDB("100"));
  EXPECT_EQ(0, agent.LoadExtensionDB("../../etc/passwd", kExtUser));
  EXPECT_EQ(64u, agent.extensionBase.size());
  agent.Destroy();  // also without managers: opened and closed per call
  EXPECT_EQ(0, agent.LoadExtensionDB("101", kExtUser));
  EXPECT_EQ(nullptr, agent.extensionManager);
}

TEST_F(TablesTest, DestroyDropsTheManagers) {
  CMAgent& agent = Start();
  EXPECT_NE(nullptr, agent.GetFxsLineMng());
  agent.Destroy();
  agent.Destroy();  // twice is fine
  EXPECT_EQ(nullptr, agent.GetFxsLineMng());
  EXPECT_EQ(nullptr, agent.extensionManager);
  EXPECT_EQ(nullptr, agent.lineManager);
  EXPECT_EQ(nullptr, agent.encodingManager);
}

}  // namespace
