#include "tools/dump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "cmcfg/cm_agent.h"
#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/ext.h"
#include "tools/format.h"
#include "tools/session.h"
#include "tools/show.h"

namespace {

using cmcfg_tool::DumpOptions;
using nlohmann::ordered_json;
using testing::HasSubstr;
using testing::Not;
using tool_testing::CopyExample;

std::string WithoutDigits(std::string text) {
  return std::regex_replace(text, std::regex("[0-9]"), "");
}

const char kReplaced[] = "\xef\xbf\xbd\xef\xbf\xbd";  // two U+FFFD

// Puts two bytes that are not UTF-8 ahead of 105's description and SIP
// display name, one at a record's top level and one nested.
void SpoilUtf8(const testing_support::TempRoot& root) {
  const std::string file = "telephony/extensiondb/user/105.cfg";
  std::string text = root.Read(file);
  for (const char* key : {"description = ", "display_name = "}) {
    size_t at = text.find(key);
    ASSERT_NE(std::string::npos, at);
    text.insert(at + std::string(key).size(), "\xff\xfe");
  }
  root.Write(file, text);
}

class DumpTest : public ::testing::Test {
 protected:
  int Run(const std::string& root) {
    out_.str("");
    err_.str("");
    DumpOptions options;
    options.root = root;
    options.logDir = logs_.path();
    return cmcfg_tool::RunDump(options, out_, err_);
  }
  testing_support::TempRoot logs_;
  std::ostringstream out_, err_;
};

TEST_F(DumpTest, ExampleMatchesTheLoadedRecords) {
  testing_support::TempRoot root;
  CopyExample(root.path());
  ASSERT_EQ(0, Run(root.path())) << err_.str();
  EXPECT_TRUE(err_.str().empty());  // no progress line off a terminal
  const ordered_json dump = ordered_json::parse(out_.str());

  // The documented order of the sections.
  std::vector<std::string> keys;
  for (auto it = dump.begin(); it != dump.end(); ++it) keys.push_back(it.key());
  EXPECT_EQ((std::vector<std::string>{"extension_table", "extensions", "attendants",
                                      "system_attendant", "general", "system_messages",
                                      "call_records", "external_user_cache", "external_users",
                                      "auto_login", "tones"}),
            keys);
  EXPECT_EQ("name", dump["extensions"][0].begin().key());

  cmcfg_tool::AgentSession session(root.path(), logs_.path());
  const CMAgent& agent = session.agent();
  std::vector<const ExtensionData*> loaded;
  for (const ExtensionData* e : agent.extensionBase)
    if (e != nullptr) loaded.push_back(e);
  ASSERT_EQ(loaded.size(), dump["extensions"].size());
  EXPECT_EQ(agent.extensionBase.size(), dump["extension_table"]["slots"].get<size_t>());
  EXPECT_EQ(agent.extensionBase.size() - loaded.size(),
            dump["extension_table"]["empty_slots"].get<size_t>());
  for (size_t i = 0; i < loaded.size(); ++i) {
    const ordered_json& e = dump["extensions"][i];
    const ExtensionData& x = *loaded[i];
    SCOPED_TRACE(x.name);
    EXPECT_EQ(x.name, e["name"]);
    EXPECT_EQ(cmcfg_tool::TypeName(x.type), e["type"]);
    EXPECT_EQ(x.description, e["description"]);
    EXPECT_EQ(x.sip.host, e["sip"]["host"]);
    EXPECT_EQ(x.sip.displayName, e["sip"]["display_name"]);
    EXPECT_EQ(!x.sip.password.empty(), e["sip"]["password_set"]);
    // Two loads differ only in the time digits of the user name.
    EXPECT_EQ(WithoutDigits(x.sip.userName), WithoutDigits(e["sip"]["user"]));
    EXPECT_EQ(x.functionalTable.size(), e["functional_table"].size());
    EXPECT_EQ(x.addressBook.size(), e["address_book"].size());
    EXPECT_EQ(x.line.voiceCodecs.size(), e["media"]["voice"].size());
  }

  // 109, the user with every service: a functional-table entry as the file
  // gives it, and the same entry in the agent's table.
  const ordered_json* ines = nullptr;
  for (const ordered_json& e : dump["extensions"])
    if (e["name"] == "109") ines = &e;
  ASSERT_NE(nullptr, ines);
  EXPECT_EQ((ordered_json{{"keys", "*60"}, {"service", "0x809"}}), (*ines)["functional_table"][1]);
  const ExtensionData* x = cmcfg_tool::FindRecord(agent, "109").extension;
  ASSERT_NE(nullptr, x);
  EXPECT_EQ(cmcfg_tool::KeysText(x->functionalTable[1].first),
            (*ines)["functional_table"][1]["keys"]);

  ASSERT_EQ(agent.attendants.size(), dump["attendants"].size());
  EXPECT_EQ("100", dump["system_attendant"]["name"]);
  EXPECT_EQ(true, dump["system_attendant"]["system_attendant"]);
  EXPECT_EQ(agent.generalData.systemPrefix, dump["general"]["system_prefix"]);
  EXPECT_EQ(agent.generalData.cdr.statedPath, dump["call_records"]["stated"]["path"]);
  EXPECT_EQ(agent.generalData.externalUsers.size(), dump["external_users"]["users"].size());
  EXPECT_EQ(agent.generalData.authorizedPhones.size(), dump["auto_login"].size());
  ASSERT_EQ(66u, dump["tones"].size());
  EXPECT_EQ(agent.toneTypes[0].frequency_1, dump["tones"][0]["frequency"][0]);
}

TEST_F(DumpTest, NeverHoldsAPassword) {
  ASSERT_EQ(0, Run(tool_testing::Examples()));
  // 105's SIP and phone passwords in examples/telephony/extensiondb/user/105.cfg.
  EXPECT_THAT(out_.str(), Not(HasSubstr("Ele-4248")));
  EXPECT_THAT(out_.str(), Not(HasSubstr("\"password\"")));
  EXPECT_THAT(out_.str(), HasSubstr("\"password_set\": true"));
}

TEST_F(DumpTest, MissingRootIsStatusTwo) {
  EXPECT_EQ(2, Run(logs_.Path("nowhere")));
  EXPECT_TRUE(out_.str().empty());
  EXPECT_THAT(err_.str(), HasSubstr("cannot read the configuration root"));
}

// A description and a SIP display name are bytes as the file holds them;
// an invalid UTF-8 sequence must not abort any JSON output.
TEST_F(DumpTest, AnOutputThatCannotBeWrittenIsStatusOne) {
  out_.setstate(std::ios::badbit);  // as a full disk leaves it
  EXPECT_EQ(1, Run(logs_.path()));
  EXPECT_EQ("cmcfg: cannot write the dump\n", err_.str());
}

TEST_F(DumpTest, InvalidUtf8IsReplacedInEveryJsonOutput) {
  testing_support::TempRoot root;
  CopyExample(root.path());
  ASSERT_NO_FATAL_FAILURE(SpoilUtf8(root));
  const std::string replaced = kReplaced;

  ASSERT_EQ(0, Run(root.path())) << err_.str();
  const ordered_json dump = ordered_json::parse(out_.str());
  const ordered_json* elena = nullptr;
  for (const ordered_json& e : dump["extensions"])
    if (e["name"] == "105") elena = &e;
  ASSERT_NE(nullptr, elena);
  EXPECT_EQ(replaced + "Elena Ruiz, Support", (*elena)["description"]);
  EXPECT_EQ(replaced + "Elena Ruiz", (*elena)["sip"]["display_name"]);

  cmcfg_tool::ExtOptions ext;
  ext.name = "105";
  ext.root = root.path();
  ext.logDir = logs_.path();
  ext.json = true;
  std::ostringstream out, err;
  ASSERT_EQ(0, cmcfg_tool::RunExt(ext, out, err));
  EXPECT_EQ(replaced + "Elena Ruiz, Support", nlohmann::json::parse(out.str())["description"]);

  cmcfg_tool::ShowOptions show;
  show.root = root.path();
  show.logDir = logs_.path();
  show.json = true;
  out.str("");
  ASSERT_EQ(0, cmcfg_tool::RunShow(show, out, err));
  EXPECT_TRUE(nlohmann::json::accept(out.str()));
}

// The printed dump, written record by record, against the whole document
// printed at once from the same loaded agent (two loads differ in the time
// digits of the SIP user names): any slip in indentation, commas, brackets
// or key order shows as a difference.
class StreamedDumpTest : public DumpTest {
 protected:
  void ExpectSameAsDocument(const std::string& root) {
    cmcfg_tool::AgentSession session(root, logs_.path());
    std::ostringstream streamed;
    cmcfg_tool::WriteDumpJson(session.agent(), streamed);
    document_ = cmcfg_tool::DumpJson(session.agent());
    streamed_ = streamed.str();
    const std::string expected = cmcfg_tool::JsonText(document_);
    EXPECT_TRUE(expected == streamed_) << FirstDifference(expected, streamed_);
  }
  // The first line where the two texts part, rather than both in full.
  static std::string FirstDifference(const std::string& expected, const std::string& actual) {
    const std::vector<std::string> a = tool_testing::Lines(expected);
    const std::vector<std::string> b = tool_testing::Lines(actual);
    size_t i = 0;
    while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
    return "line " + std::to_string(i + 1) + ": expected \"" + (i < a.size() ? a[i] : "<end>") +
           "\", written \"" + (i < b.size() ? b[i] : "<end>") + "\"";
  }
  ordered_json document_;
  std::string streamed_;
};

TEST_F(StreamedDumpTest, ExampleIsTheDocumentByteForByte) {
  testing_support::TempRoot root;
  CopyExample(root.path());
  ExpectSameAsDocument(root.path());
  // Both arrays hold several records, so the separators between them count.
  EXPECT_GT(document_["extensions"].size(), 1u);
  EXPECT_GT(document_["attendants"].size(), 1u);
}

TEST_F(StreamedDumpTest, InvalidUtf8IsReplacedAsInTheDocument) {
  testing_support::TempRoot root;
  CopyExample(root.path());
  ASSERT_NO_FATAL_FAILURE(SpoilUtf8(root));
  ExpectSameAsDocument(root.path());
  EXPECT_THAT(streamed_, HasSubstr("\"description\": \"" + std::string(kReplaced) + "Elena"));
  EXPECT_THAT(streamed_, HasSubstr("\"display_name\": \"" + std::string(kReplaced) + "Elena"));
}

// No records at all: empty arrays print as [] and no system attendant as
// null, as nlohmann::json prints them.
TEST_F(StreamedDumpTest, EmptyRootIsTheDocumentByteForByte) {
  testing_support::TempRoot root;
  ExpectSameAsDocument(root.path());
  EXPECT_TRUE(document_["extensions"].empty());
  EXPECT_TRUE(document_["attendants"].empty());
  EXPECT_TRUE(document_["system_attendant"].is_null());
}

TEST(JsonHelpers, ToOrderedKeepsValuesAndTypes) {
  const nlohmann::json in = {{"b", -3}, {"a", {1u, 2.5, nullptr, "x", true}}};
  const ordered_json out = cmcfg_tool::ToOrdered(in);
  EXPECT_EQ("a", out.begin().key());  // nlohmann::json's sorted order, kept
  EXPECT_EQ(-3, out["b"].get<int>());
  EXPECT_TRUE(out["a"][0].is_number_unsigned());
  EXPECT_DOUBLE_EQ(2.5, out["a"][1].get<double>());
  EXPECT_TRUE(out["a"][2].is_null());
  EXPECT_EQ(in.dump(), out.dump());
}

TEST(JsonHelpers, ExtensionFileCountGroupsThousands) {
  testing_support::TempRoot root;
  for (int i = 0; i < 1002; ++i)
    root.Write("telephony/extensiondb/user/" + std::to_string(i) + ".cfg", "");
  root.Write("telephony/extensiondb/system.cfg", "");
  root.Write("telephony/extensiondb/attendant/1.cfg", "");
  EXPECT_EQ("1,003", cmcfg_tool::ExtensionFileCount(root.path()));
  EXPECT_EQ("0", cmcfg_tool::ExtensionFileCount(root.Path("nowhere/")));
}

}  // namespace
