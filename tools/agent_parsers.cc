#include "tools/agent_parsers.h"

#include <sys/stat.h>

#include <vector>

#include "tools/format.h"

namespace cmcfg_tool {

AgentParsers::AgentParsers() {
  const std::string root = root_.path().empty() ? "/nonexistent/" : root_.path();
  mkdir((root + "telephony").c_str(), 0700);
  session_ = std::make_unique<AgentSession>(root, "", Access::kInspect);
}

std::string AgentParsers::DialledKeys(const std::string& code) {
  std::vector<KeypadButton> keys;
  std::string text = code;
  session_->agent().FormKeySequence(keys, text);
  return KeysText(keys);
}

std::list<unsigned short> AgentParsers::Channels(const std::string& spec) {
  std::list<unsigned short> channels;
  session_->agent().GetFxoChannels(spec, &channels);
  return channels;
}

std::list<std::pair<unsigned short, std::list<unsigned short>>> AgentParsers::CasSpans(
    const std::string& spec) {
  std::list<std::pair<unsigned short, std::list<unsigned short>>> spans;
  session_->agent().GetCasData(spec, &spans);
  return spans;
}

}  // namespace cmcfg_tool
