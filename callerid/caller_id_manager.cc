#include "cmcfg/caller_id_manager.h"

#include <algorithm>

#include "cmcfg/system_records.h"

namespace {

// The longest caller-ID text Parse builds.
constexpr size_t kMaxCallerIdText = 1024;

bool IsAllowed(CallerIDManager::CallType type, char letter) {
  switch (letter) {
    case 'a':
    case 'd':
    case 'u':
      return true;
    case 'h':
      return type == CallerIDManager::kIp;
    default:
      return false;
  }
}

const std::string& TemplateFor(CallerIDManager::CallType type, const GeneralData& data) {
  switch (type) {
    case CallerIDManager::kIp:
      return data.callerIdIp;
    case CallerIDManager::kPstn:
      return data.callerIdPstn;
    default:
      return data.callerIdLocal;
  }
}

std::string Address(CallerIDManager::CallType type, const CallParams& caller) {
  if (!caller.displayName.empty()) return caller.displayName;
  if (type == CallerIDManager::kIp && !caller.host.empty()) {
    return caller.userName + "@" + caller.host;
  }
  return caller.userName;
}

}  // namespace

bool CallerIDManager::Check(CallType type, const std::string& pattern,
                            std::list<std::string>& tokens) {
  tokens.clear();
  // One pass with a position: cutting the consumed text off the front each
  // time made a long template cost quadratic time on every call.
  size_t pos = 0;
  for (;;) {
    size_t percent = pattern.find('%', pos);
    if (percent == std::string::npos) break;
    if (percent > pos) tokens.push_back(pattern.substr(pos, percent - pos));
    if (percent + 1 >= pattern.size() || !IsAllowed(type, pattern[percent + 1])) return false;
    tokens.push_back(pattern.substr(percent, 2));
    pos = percent + 2;
  }
  tokens.push_back(pattern.substr(pos));
  return true;
}

bool CallerIDManager::Parse(CallType type, const CallParams& caller, const GeneralData& data,
                            std::string* result) {
  if (result == nullptr) return false;
  std::list<std::string> tokens;
  if (!Check(type, TemplateFor(type, data), tokens)) return false;
  // No phone shows more; a template repeating a long name must not build
  // megabytes.
  size_t room = kMaxCallerIdText;
  auto append = [&](const std::string& text) {
    const size_t n = std::min(room, text.size());
    result->append(text, 0, n);
    room -= n;
  };
  for (const std::string& token : tokens) {
    if (room == 0) break;
    if (token.size() != 2 || token[0] != '%') {
      append(token);
      continue;
    }
    switch (token[1]) {
      case 'u':
        append(caller.userName);
        break;
      case 'd':
        append(caller.displayName);
        break;
      case 'h':
        append(caller.host);
        break;
      case 'a':
        append(Address(type, caller));
        break;
    }
  }
  return true;
}
