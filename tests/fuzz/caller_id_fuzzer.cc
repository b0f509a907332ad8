// Caller-ID templates and the text built from them. The input holds the
// template and the caller's user name, display name and host, separated by
// fuzz_support::kSplit.
#include <list>
#include <string>
#include <vector>

#include "cmcfg/caller_id_manager.h"
#include "cmcfg/system_records.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

using Type = CallerIDManager::CallType;

bool Allowed(Type type, char letter) {
  return letter == 'u' || letter == 'd' || letter == 'a' || (letter == 'h' && type == CallerIDManager::kIp);
}

// The text the documented template language gives, or false for an
// invalid template.
bool Expected(Type type, const std::string& pattern, const CallParams& caller, std::string* out) {
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%') {
      out->push_back(pattern[i]);
      continue;
    }
    if (i + 1 >= pattern.size() || !Allowed(type, pattern[i + 1])) return false;
    switch (pattern[++i]) {
      case 'u': *out += caller.userName; break;
      case 'd': *out += caller.displayName; break;
      case 'h': *out += caller.host; break;
      case 'a':
        if (!caller.displayName.empty()) {
          *out += caller.displayName;
        } else if (type == CallerIDManager::kIp && !caller.host.empty()) {
          *out += caller.userName + "@" + caller.host;
        } else {
          *out += caller.userName;
        }
        break;
    }
  }
  return true;
}

// Parse cuts its text after this many bytes; the inputs stay below what
// would make the expected text, unbounded, take long to build.
constexpr size_t kMaxText = 1024;
constexpr size_t kMaxInput = 4096;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kMaxInput) return 0;
  const std::vector<std::string> parts = fuzz_support::Split(fuzz_support::AsText(data, size), 4);
  const std::string& pattern = parts[0];
  CallParams caller;
  caller.userName = parts[1];
  caller.displayName = parts[2];
  caller.host = parts[3];
  GeneralData general;
  general.callerIdLocal = general.callerIdIp = general.callerIdPstn = pattern;

  CallerIDManager manager;
  for (Type type : {CallerIDManager::kLocal, CallerIDManager::kIp, CallerIDManager::kPstn}) {
    std::list<std::string> tokens = {"stale"};
    const bool valid = manager.Check(type, pattern, tokens);
    std::string expected;
    FUZZ_CHECK(valid == Expected(type, pattern, caller, &expected));
    expected = "prefix:" + expected.substr(0, kMaxText);
    if (valid) {
      // The tokens are the template cut into literals and placeholders.
      std::string joined;
      for (const std::string& token : tokens) {
        if (!token.empty() && token[0] == '%') {
          FUZZ_CHECK(token.size() == 2 && Allowed(type, token[1]));
        } else {
          FUZZ_CHECK(token.find('%') == std::string::npos);
        }
        joined += token;
      }
      FUZZ_CHECK(joined == pattern);
    }

    std::string result = "prefix:";
    FUZZ_CHECK(manager.Parse(type, caller, general, &result) == valid);
    // Appended to, or untouched when the template is invalid.
    FUZZ_CHECK(result == (valid ? expected : std::string("prefix:")));
    FUZZ_CHECK(!manager.Parse(type, caller, general, nullptr));
  }
  return 0;
}
