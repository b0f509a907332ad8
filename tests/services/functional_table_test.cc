#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLoggingOn[] = "section logging\n{\nlog_enabled = 1\n}\n";

class FunctionalTableTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", kLoggingOn);
  }
  std::string Log() const { return root_.Read("cmcfg.log"); }
  bool Logged(const std::string& line) const { return Log().find(line) != std::string::npos; }

  KeySequence Keys(std::string text) {
    KeySequence keys;
    EXPECT_TRUE(agent_->FormKeySequence(keys, text));
    return keys;
  }

  static ExtensionData Record(const std::string& name, ExtType type) {
    ExtensionData record;
    record.name = name;
    record.type = type;
    return record;
  }
};

TEST_F(FunctionalTableTest, KeysOfDigitsStarPoundAndFlash) {
  Start();
  EXPECT_EQ((KeySequence{0x12A, 0x107, 0x102}), Keys("*72"));
  EXPECT_EQ((KeySequence{0x123, 0x109, 0x8F0}), Keys("#9f"));
  EXPECT_EQ((KeySequence{0x100, 0x105}), Keys("0 F+x5"));  // others skipped
  EXPECT_TRUE(Keys("F").empty());
  EXPECT_TRUE(Keys("").empty());

  KeySequence keys{0x8F0};  // appended to, not cleared
  std::string text = "1";
  agent_->FormKeySequence(keys, text);
  EXPECT_EQ((KeySequence{0x8F0, 0x101}), keys);
}

typedef std::vector<std::pair<std::string, KeypadButton>> Table;

Table Readable(const ExtensionData& record) {
  Table table;
  for (const FunctionalEntry& entry : record.functionalTable) {
    std::string text;
    for (KeypadButton key : entry.first) {
      text += key == 0x12A ? '*' : key == 0x123 ? '#' : static_cast<char>('0' + key - 0x100);
    }
    table.emplace_back(text, entry.second);
  }
  return table;
}

TEST_F(FunctionalTableTest, EveryRecordMemberGoesToItsServiceKey) {
  // code_k = "#" followed by k in two digits: the table, sorted, lists the
  // members 1 to 20 in turn with the key each is bound to.
  std::string codes;
  for (int k = 1; k <= 20; ++k) {
    codes += "code_" + std::to_string(k) + " = #" + (k < 10 ? "0" : "") + std::to_string(k) + "\n";
  }
  root_.Write("telephony/extensiondb/user/101.cfg", "section service_codes\n{\n" + codes + "}\n");
  CMAgent& agent = Start();
  ExtensionData record = Record("101", kExtUser);
  ASSERT_TRUE(agent.GetFuntionalTable(&record));
  const KeypadButton expected[] = {0x801, 0x802, 0x803, 0x804, 0x805,  0x800,  0x806,
                                   0x807, 0x809, 0x808, 0x80A, 0x80B,  0x80C,  0x80D,
                                   0x80E, 0xA80F, 0xA810, 0x811, 0x812, 0x813};
  ASSERT_EQ(20u, record.functionalTable.size());
  for (int k = 0; k < 20; ++k) {
    EXPECT_EQ(expected[k], record.functionalTable[k].second) << "member " << k + 1;
    EXPECT_EQ((KeySequence{0x123, 0x100 + (k + 1) / 10, 0x100 + (k + 1) % 10}),
              record.functionalTable[k].first);
  }
  EXPECT_TRUE(Logged("GetFunctionalTable: extension 101, number of service codes = 20.\n"));
}

TEST_F(FunctionalTableTest, SortedWithEqualCodesInServiceOrder) {
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section service_codes\n{\n"
              "code_1 = *72\n"
              "code_3 = *22,*21\n"
              "code_6 = *7\n"
              "code_9 = *40\n"
              "code_10 = *40\n"
              "code_16 = #1\n"
              "code_17 = *1,F\n"
              "code_18 = 9,\n"
              "}\n");
  CMAgent& agent = Start();
  ExtensionData record = Record("101", kExtUser);
  record.functionalTable.emplace_back(KeySequence{0x101}, 0x801);  // replaced, not kept
  ASSERT_TRUE(agent.GetFuntionalTable(&record));
  // Empty sequences ("F", the empty piece) first, in the order added; then
  // digits, '#' (0x123) and '*' (0x12A); a prefix before the longer code.
  Table expected = {{"", 0xA810},  {"", 0x811},   {"9", 0x811},   {"#1", 0xA80F},
                    {"*1", 0xA810}, {"*21", 0x803}, {"*22", 0x803}, {"*40", 0x808},
                    {"*40", 0x809}, {"*7", 0x800},  {"*72", 0x801}};
  EXPECT_EQ(expected, Readable(record));
}

TEST_F(FunctionalTableTest, OnlyExistingUserExtensionsHaveATable) {
  root_.Write("telephony/extensiondb/user/101.cfg", "section extension\n{\n}\n");
  root_.Write("telephony/extensiondb/pickup/300.cfg",
              "section service_codes\n{\ncode_1 = *72\n}\n");
  CMAgent& agent = Start();

  ExtensionData pickup = Record("300", kExtPickup);
  pickup.functionalTable.emplace_back(KeySequence{0x101}, 0x801);
  const std::string before = Log();
  EXPECT_FALSE(agent.GetFuntionalTable(&pickup));
  EXPECT_TRUE(pickup.functionalTable.empty());
  EXPECT_EQ(before, Log());  // silently

  ExtensionData missing = Record("999", kExtUser);
  missing.functionalTable.emplace_back(KeySequence{0x101}, 0x801);
  EXPECT_FALSE(agent.GetFuntionalTable(&missing));
  EXPECT_TRUE(missing.functionalTable.empty());
  EXPECT_TRUE(Logged("GetFunctionalTable: failed to load user extension 999.\n"));

  // No service codes configured is no failure.
  ExtensionData plain = Record("101", kExtUser);
  EXPECT_TRUE(agent.GetFuntionalTable(&plain));
  EXPECT_TRUE(plain.functionalTable.empty());
  EXPECT_TRUE(Logged("GetFunctionalTable: extension 101, number of service codes = 0.\n"));

  EXPECT_FALSE(agent.GetFuntionalTable(nullptr));
}

TEST_F(FunctionalTableTest, AfterDestroyTheFileIsReadForTheCall) {
  root_.Write("telephony/extensiondb/user/101.cfg", "section service_codes\n{\ncode_1 = *72\n}\n");
  CMAgent& agent = Start();
  agent.Destroy();
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section service_codes\n{\ncode_1 = *72\ncode_2 = *73\n}\n");
  ExtensionData record = Record("101", kExtUser);
  EXPECT_TRUE(agent.GetFuntionalTable(&record));
  EXPECT_EQ((Table{{"*72", 0x801}, {"*73", 0x802}}), Readable(record));
  EXPECT_EQ(nullptr, agent.extensionManager);

  ExtensionData missing = Record("999", kExtUser);
  EXPECT_FALSE(agent.GetFuntionalTable(&missing));
  EXPECT_EQ(nullptr, agent.extensionManager);
}

}  // namespace
