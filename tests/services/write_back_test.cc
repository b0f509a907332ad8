// The changes the agent writes back or re-reads, made on hand-written files
// (comments, odd spacing, a key the store does not know, CRLF line ends) in
// tests/services/write_back/ and pinned in write_back/<case>.txt: what the
// operations returned, each file after them ("untouched" when not even
// saved again), the address book and auto-login list in memory, the log
// lines and the store's reports. CMCFG_REGEN_GOLDEN=1 rewrites the pins.
// Where the agent's copy must follow the files, a fresh agent has to read
// the same: a change that lives only in memory is no change.
#include <stdio.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "tests/support/agent_fixture.h"
#include "tests/support/failing_saves.h"
#include "tests/support/golden.h"
#include "tests/support/tree_snapshot.h"

namespace {

using testing_support::ReadSource;
using testing_support::TempRoot;
using testing_support::TreeSnapshot;
using Lines = std::vector<std::string>;

const char kUser[] = "telephony/extensiondb/user/101.cfg";
const char kPhones[] = "telephony/authorized_phones.cfg";

std::string Join(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// Each contact with the services a write or a refresh can change, in the
// book's order or sorted.
Lines Book(const ExtensionData* user, bool sorted = false) {
  auto forward = [](const ForwardData& f) {
    std::string text = std::to_string(f.active);
    for (const ForwardParams& to : f.destinations)
      text += " " + std::to_string(to.callType) + ":" + to.userName + (to.host.empty() ? "" : "@" + to.host);
    return text;
  };
  Lines lines;
  for (const AddressBookEntry& e : user ? user->addressBook : std::list<AddressBookEntry>()) {
    const SupServiceSet& s = e.second;
    std::ostringstream line;
    line << e.first.id << ' ' << e.first.name << " type " << e.first.callType << " | unconditional "
         << forward(s.forwardUnconditional) << " | busy " << forward(s.forwardBusy) << " | blocked in "
         << s.incomingBlocking.active << '/' << s.incomingBlocking.blockMode << " out "
         << s.outgoingBlocking.active << '/' << s.outgoingBlocking.blockMode << " | clir "
         << s.clir.active << " | intercom " << s.intercom.mode;
    lines.push_back(line.str());
  }
  if (sorted) std::sort(lines.begin(), lines.end());
  return lines;
}

Lines Phones(const CMAgent& agent) {
  Lines lines;
  for (const AuthorizedPhonesData& p : agent.generalData.authorizedPhones)
    lines.push_back(p.phoneAddress + " type " + std::to_string(p.phoneType) + " ext " + p.extension +
                    " lines " + std::to_string(p.lineCount) + " user " + p.userName + " permissions " +
                    std::to_string(p.permissions) + " login " + std::to_string(p.loginTime));
  return lines;
}

int Save(CMAgent& agent, AuthorizedPhonesData phone) { return agent.SaveAutologinUser(&phone); }

// The operations of a case, run on the agent `a` and user 101 `u`; each
// result is pinned as a number.
#define OPS(...) \
  []([[maybe_unused]] CMAgent& a, [[maybe_unused]] ExtensionData* u) -> std::vector<int> { return {__VA_ARGS__}; }

// Another writer's change, after the agent's load: the first `from` of the
// file becomes `to`; an empty `from` appends `to`.
struct Change {
  const char* file;
  std::string from, to;
};

struct Case {
  const char* name;
  std::vector<Change> before;
  std::function<std::vector<int>(CMAgent&, ExtensionData*)> run;
  bool followsFiles;  // the memory must read as a fresh agent reads the files
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

const auto kBeyondIntercom = static_cast<UpdateTypeCodes::UpdateType>(UpdateTypeCodes::kUpdateIntercom + 1);
// The web configuration changes contact 2's services: CLIR off, a busy
// forward, an intercom mode.
const std::vector<Change> kServicesChanged = {
    {kUser, "\tactive=1", "\tactive=0"},
    {kUser, "", "section contact 2 forward_busy\r\n{\r\n\tactive=1\r\n\tdestination_1=1,0,222\r\n}\r\n"
                "section contact 2 intercom\r\n{\r\n\tmode=1\r\n}\r\n"}};
const AuthorizedPhonesData kNightShift = {"10.0.0.7", "305", 1, 2, "Night shift", 0, 9};

const Case kCases[] = {
    {"switch_on", {}, OPS(a.SwitchForwardService(u)), true},
    {"switch_twice", {}, OPS(a.SwitchForwardService(u), a.SwitchForwardService(u)), true},
    // Memory says off, the file on: memory decides, it is what the user was told.
    {"switch_after_another_writer", {{kUser, "\tactive=0", "\tactive=1"}}, OPS(a.SwitchForwardService(u)), true},
    {"switch_without_any_caller", {{kUser, "section contact 1\r\n{\r\n\tname=*\r\n\tcall_type=0\r\n}\r\n", ""}},
     OPS(a.SwitchForwardService(u), a.UpdateForwardService(u, "400", true, true)), false},
    {"forward_replaced", {},
     OPS(a.UpdateForwardService(u, "*9777", true, false), a.UpdateForwardService(u, "*9777", true, true)), true},
    // The same number stores nothing, even where it is disabled.
    {"forward_same_number", {{kUser, "=1,3,", "=0,3,"}}, OPS(a.UpdateForwardService(u, "*9555", true, true)), false},
    {"forward_cleared_and_added", {},
     OPS(a.UpdateForwardService(u, "", false, false), a.UpdateForwardService(u, "", false, false),
         a.UpdateForwardService(u, "400", true, false)), true},
    {"block_new_number", {},
     OPS(a.BlockContact(u, "5551234", kCallNumber, true), a.BlockContact(u, "5551234", kCallNumber, true)), true},
    {"block_known_contact", {},
     OPS(a.BlockContact(u, "5001", kCallNumber, false), a.BlockContact(u, "5001", kCallPstn, true)), true},
    {"block_blocked_meanwhile", {{kUser, "", "section contact 2 incoming_blocking\r\n{\r\n\tactive=1\r\n\tblock_mode=2\r\n}\r\n"}},
     OPS(a.BlockContact(u, "5001", kCallNumber, true)), true},
    {"block_contact_added_meanwhile", {{kUser, "", "section contact 4\r\n{\r\n\tname=5551234\r\n}\r\n"}},
     OPS(a.BlockContact(u, "5551234", kCallNumber, true)), true},
    {"refused_values", {},
     OPS(a.UpdateForwardService(u, "abc", true, true), a.UpdateForwardService(u, "12\n34", true, true),
         a.UpdateForwardService(u, std::string(5000, '5'), true, true),
         a.BlockContact(u, "not a sip address", kCallSip, true), a.BlockContact(u, "sip:bob@@bad host", kCallSip, true)),
     true},
    // Contacts 7 and 8 added, 2 renamed; the unknown 99 stops the list.
    {"contacts_changed",
     {{kUser, "name=5001", "name=5?01"},
      {kUser, "", "section contact 7\r\n{\r\n\tname=7001\r\n}\r\nsection contact 7 clir\r\n{\r\n\tactive=1\r\n}\r\n"
                  "section contact 8\r\n{\r\n\tname=8001\r\n}\r\n"}},
     OPS(a.UpdateContact(u, "2,7,99,8", UpdateTypeCodes::kModeChange)), false},
    {"contacts_erased", {},
     OPS(a.UpdateContact(u, "1,3", UpdateTypeCodes::kModeErase), a.UpdateContact(u, "3", UpdateTypeCodes::kModeErase)),
     false},
    {"services_clir", kServicesChanged, OPS(a.UpdateSupServices(u, 2, UpdateTypeCodes::kUpdateClir)), false},
    {"services_intercom", kServicesChanged, OPS(a.UpdateSupServices(u, 2, UpdateTypeCodes::kUpdateIntercom)), false},
    {"services_unknown_type_reads_all", kServicesChanged,
     OPS(a.UpdateSupServices(u, 2, kBeyondIntercom), a.UpdateSupServices(u, 42, UpdateTypeCodes::kUpdateClir)), true},
    {"services_all", kServicesChanged, OPS(a.UpdateSupServices(u, 2, UpdateTypeCodes::kUpdateAll)), true},
    // The list keeps its user name until the next load.
    {"autologin_known_phone", {}, OPS(Save(a, kNightShift)), false},
    {"autologin_other_type", {}, OPS(Save(a, {"10.0.0.7", "305", 5, 3, "Night shift", 1, 9})), true},
    {"autologin_saved_meanwhile", {{kPhones, "", "section 2\r\n{\r\nphone_address = 10.0.0.8\r\nphone_type = 2\r\n}\r\n"}},
     OPS(Save(a, {"10.0.0.8", "305", 2, 2, "Night shift", 0, 9})), true},
};

class WriteBackFiles : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\n");
    cfg::SetStoreReporter([this](const std::string& line) { reports_.push_back(line); });
  }
  void TearDown() override {
    cfg::SetStoreReporter(nullptr);
    cfg::SetLockTimeout(cfg::kDefaultLockTimeout);
    AgentTest::TearDown();
  }
  // Both files as written by hand, and the agent over them as in service.
  ExtensionData* Load() {
    for (const char* file : {kUser, kPhones})
      root_.Write(file, ReadSource("services/write_back/" + std::string(std::strrchr(file, '/') + 1)));
    Start().Destroy();
    return Find("101");
  }
  Lines reports_;
};

class WriteBackTest : public WriteBackFiles, public ::testing::WithParamInterface<Case> {};

TEST_P(WriteBackTest, LeavesWhatIsPinned) {
  const Case& c = GetParam();
  ExtensionData* user = Load();
  ASSERT_NE(nullptr, user);
  for (const Change& change : c.before) {
    std::string text = root_.Read(change.file);
    const size_t at = change.from.empty() ? text.size() : text.find(change.from);
    ASSERT_NE(std::string::npos, at) << change.from;
    root_.Write(change.file, text.replace(at, change.from.size(), change.to));
  }
  // Inode, time and contents: a save, even of the same text, changes them.
  const TreeSnapshot before[] = {TreeSnapshot(root_.Path(kUser)), TreeSnapshot(root_.Path(kPhones))};
  const size_t logged = Log().size();
  std::ostringstream out;
  out << "results:";
  for (int result : c.run(*agent_, user)) out << ' ' << result;
  int i = 0;
  for (const char* file : {kUser, kPhones}) {
    const bool untouched = TreeSnapshot(root_.Path(file)).DifferencesFrom(before[i++]).empty();
    out << "\n--- " << file << (untouched ? " untouched\n" : "\n") << (untouched ? "" : root_.Read(file));
  }
  out << "--- book\n" << Join(Book(user)) << "--- auto-login list\n" << Join(Phones(*agent_))
      << "--- log\n" << Log().substr(logged) << "--- store reports\n" << Join(reports_);
  if (c.followsFiles) {
    EXPECT_EQ(Book(testing_support::FindExtension(Fresh(), "101"), true), Book(user, true));
    EXPECT_EQ(Phones(*fresh_), Phones(*agent_));
  }
  testing_support::ExpectGolden("services/write_back/" + std::string(c.name) + ".txt", out.str(), root_.path());
}

INSTANTIATE_TEST_SUITE_P(Cases, WriteBackTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<Case>& info) { return info.param.name; });

// A write that cannot be made reports failure and changes neither the files
// nor the memory: the lock held by another writer past the timeout, a save
// that fails, the file removed by another writer.
TEST_F(WriteBackFiles, FailedWritesChangeNothing) {
  root_.Write("telephony/general.cfg", "");  // no log file to change
  cfg::SetLockTimeout(std::chrono::milliseconds(50));
  struct Op {
    const char* file;
    int failed;  // what the operation gives when it fails
    std::function<std::vector<int>(CMAgent&, ExtensionData*)> run;
  };
  const Op ops[] = {
      {kUser, 0, OPS(a.SwitchForwardService(u))},
      {kUser, 0, OPS(a.UpdateForwardService(u, "*9777", true, true))},
      {kUser, 0, OPS(a.UpdateForwardService(u, "", false, false))},
      {kUser, 2, OPS(a.BlockContact(u, "5551234", kCallNumber, true))},
      {kUser, 2, OPS(a.BlockContact(u, "5001", kCallNumber, false))},
      {kPhones, 0, OPS(Save(a, kNightShift))},
      {kPhones, 0, OPS(Save(a, {"10.0.0.9", "305", 1, 2, "Night shift", 0, 9}))},
  };
  using Fault = std::function<std::shared_ptr<void>(const TempRoot&, const char*)>;
  const std::pair<const char*, Fault> faults[] = {
      {"lock held", [](const TempRoot& r, const char* file) { return std::make_shared<cfg::FileLock>(r.Path(file)); }},
      {"save fails", [](const TempRoot&, const char*) { return std::make_shared<testing_support::FailingSaves>(); }},
      {"file removed",
       [](const TempRoot& r, const char* file) { remove(r.Path(file).c_str()); return std::shared_ptr<void>(); }},
  };
  for (const auto& [fault, make] : faults) {
    for (size_t op = 0; op < std::size(ops); ++op) {
      if (fault == std::string("file removed") && ops[op].file == kPhones) continue;  // a new file then
      SCOPED_TRACE(std::string(fault) + ", operation " + std::to_string(op));
      ExtensionData* user = Load();
      const Lines book = Book(user), phones = Phones(*agent_);
      std::shared_ptr<void> held = make(root_, ops[op].file);
      const TreeSnapshot before[] = {TreeSnapshot(root_.Path(kUser)), TreeSnapshot(root_.Path(kPhones))};
      EXPECT_EQ(std::vector<int>{ops[op].failed}, ops[op].run(*agent_, user));
      held.reset();
      EXPECT_EQ("", TreeSnapshot(root_.Path(kUser)).DifferencesFrom(before[0]) +
                        TreeSnapshot(root_.Path(kPhones)).DifferencesFrom(before[1]));
      EXPECT_EQ(book, Book(user));
      EXPECT_EQ(phones, Phones(*agent_));
    }
  }
  CMAgent& agent = *agent_;
  EXPECT_FALSE(agent.SwitchForwardService(nullptr));
  EXPECT_FALSE(agent.UpdateForwardService(nullptr, "1", true, true));
  EXPECT_EQ(2, agent.BlockContact(nullptr, "1", kCallNumber, true));
  EXPECT_EQ(0, agent.UpdateContact(nullptr, "1", UpdateTypeCodes::kModeAdd));
  EXPECT_FALSE(agent.UpdateSupServices(nullptr, 1, UpdateTypeCodes::kUpdateAll));
  EXPECT_FALSE(agent.SaveAutologinUser(nullptr));
}

}  // namespace
