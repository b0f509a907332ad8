// Key sequences: FormKeySequence over the raw input, then the same bytes as
// a user extension's file (extensiondb/user/101.cfg), from which the agent
// builds the functional table (service codes), the speed-dial list and the
// address book.
#include <algorithm>
#include <string>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/document.h"
#include "platform/base/string_utils.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

const KeypadButton kPound = 0x100 + '#';
const KeypadButton kStar = 0x100 + '*';
const KeypadButton kFlash = 0x8F0;

CMAgent* agent = nullptr;  // reachable to the end: no leak

bool IsKey(KeypadButton key) {
  return (key >= 0x100 && key <= 0x109) || key == kStar || key == kPound || key == kFlash;
}

bool IsCallType(CallType type) {
  return type == kCallNumber || type == kCallSip || type == kCallPstn || type == kCallFromPhone;
}

size_t KeysIn(const std::string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || c == '*' || c == '#' || c == 'f';
  }));
}

// The service keys of the functional table (see services/functional_table.cc).
bool IsServiceKey(KeypadButton key) {
  return (key >= 0x800 && key <= 0x80E) || key == 0xA80F || key == 0xA810 ||
         (key >= 0x811 && key <= 0x813);
}

void CheckFormKeySequence(const std::string& input) {
  std::vector<KeypadButton> keys = {kPound};  // appended to
  std::string text = input;
  FUZZ_CHECK(agent->FormKeySequence(keys, text));
  FUZZ_CHECK(text == input);
  FUZZ_CHECK(keys.size() == 1 + KeysIn(input));
  for (KeypadButton key : keys) FUZZ_CHECK(IsKey(key));
}

// How many key sequences the file's service codes make: one per piece of
// each non-empty code_1..code_20 of the first "service_codes" section.
size_t ServiceCodePieces(const cfg::Document& doc) {
  const cfg::Section* section = doc.Find("service_codes");
  if (section == nullptr) return 0;
  size_t pieces = 0;
  for (int i = 1; i <= 20; ++i) {
    const cfg::Entry* entry = section->Find("code_" + std::to_string(i));
    if (entry != nullptr && !entry->value.empty())
      pieces += StringUtils::ParseCommaLine(std::string(entry->value), ',').size();
  }
  return pieces;
}

size_t SpeedDialSections(const cfg::Document& doc) {
  size_t count = 0;
  for (const cfg::Section& s : doc.sections())
    if (s.name.size() > 11 && s.name.compare(0, 11, "speed_dial ") == 0) ++count;
  return count;
}

template <typename Table>
bool Ascending(const Table& table) {
  return std::is_sorted(table.begin(), table.end(),
                        [](const auto& a, const auto& b) { return a.first < b.first; });
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_support::Root({"telephony/extensiondb/user"});
  // One agent over an empty root; after Destroy every query reads the
  // extension database afresh.
  agent = new CMAgent;
  agent->Destroy();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(fuzz_support::AsText(data, size));
  CheckFormKeySequence(input);

  fuzz_support::Root().Write("telephony/extensiondb/user/101.cfg", input);
  const cfg::Document doc = cfg::Document::Parse(input);

  ExtensionData extension;
  extension.name = "101";
  extension.type = kExtUser;
  FUZZ_CHECK(agent->GetFuntionalTable(&extension));
  FUZZ_CHECK(Ascending(extension.functionalTable));
  FUZZ_CHECK(extension.functionalTable.size() == ServiceCodePieces(doc));
  for (const FunctionalEntry& entry : extension.functionalTable) {
    FUZZ_CHECK(IsServiceKey(entry.second));
    for (KeypadButton key : entry.first) FUZZ_CHECK(IsKey(key));
  }

  FUZZ_CHECK(agent->GetSpeedDialList(&extension));
  FUZZ_CHECK(Ascending(extension.speedDial));
  FUZZ_CHECK(extension.speedDial.size() <= SpeedDialSections(doc));
  for (const SpeedDialEntry& entry : extension.speedDial) {
    const KeySequence& keys = entry.first;
    FUZZ_CHECK(keys.size() == 3 && keys[0] == kPound);
    FUZZ_CHECK(keys[1] >= 0x100 && keys[1] <= 0x109 && keys[2] >= 0x100 && keys[2] <= 0x109);
    const ForwardParams& to = entry.second;
    FUZZ_CHECK(IsCallType(to.callType));
    if (to.callType == kCallSip) {
      // A SIP destination either parsed (it has a host) or left empty.
      FUZZ_CHECK(!to.host.empty() || (to.userName.empty() && to.port.empty()));
    }
  }

  // The address book of the same file: every contact has a call type the
  // call manager knows.
  FUZZ_CHECK(agent->LoadAddressBook(&extension) || extension.addressBook.empty());
  for (const AddressBookEntry& entry : extension.addressBook) {
    FUZZ_CHECK(IsCallType(entry.first.callType));
    // A forward destination keeps the type its file gives, any number (a
    // type the call manager does not know is a dialled number); reading it
    // must be defined behaviour, which the sanitizer checks here.
    const SupServiceSet& services = entry.second;
    for (const ForwardData* forward :
         {&services.forwardUnconditional, &services.forwardNoAnswer, &services.forwardBusy})
      for (const ForwardParams& to : forward->destinations)
        FUZZ_CHECK(to.callType != kCallSip || !to.host.empty());
  }

  // Another kind, or an extension that is not there, gives empty lists.
  ExtensionData missing;
  missing.name = "102";
  missing.type = kExtUser;
  missing.speedDial.emplace_back(KeySequence{kPound}, ForwardParams());
  FUZZ_CHECK(!agent->GetSpeedDialList(&missing) && missing.speedDial.empty());
  return 0;
}
