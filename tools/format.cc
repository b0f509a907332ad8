#include "tools/format.h"

#include <cstdio>
#include <iterator>

namespace cmcfg_tool {

const char* TypeName(ExtType type) {
  switch (type) {
    case kExtAttendant: return "attendant";
    case kExtUser: return "user";
    case kExtPickup: return "pickup";
    case kExtCallPark: return "call park";
    case kExtPaging: return "paging";
  }
  return "unknown";
}

std::string CallTypeName(int type) {
  switch (type) {
    case kCallNumber: return "number";
    case kCallSip: return "SIP";
    case kCallPstn: return "PSTN";
    case kCallFromPhone: return "from phone";
  }
  return "type " + std::to_string(type);
}

std::string SipText(const std::string& user, const std::string& host, const std::string& port) {
  if (user.empty() && host.empty() && port.empty()) return "-";
  std::string text = user;
  if (!host.empty()) text += "@" + host;
  if (!port.empty()) text += ":" + port;
  return text;
}

std::string EndpointText(uint32_t gatewayId, uint32_t lineId) {
  if (gatewayId == INACTIVE_PARTY || lineId == INACTIVE_PARTY) return "-";
  return "MG{" + std::to_string(gatewayId) + "}<" + std::to_string(lineId) + ">";
}

std::string LocalEndpoint(const LineSettings& line) {
  return EndpointText(line.gatewayId, line.lineId);
}

std::string RemoteEndpoint(const LineSettings& line) {
  // The remote ids keep whatever they held when the port is not remote.
  if (!line.remote.isRemote) return "-";
  return EndpointText(line.remote.gatewayId, line.remote.lineId);
}

std::string CodecNames(const std::list<CodecInfo>& codecs) {
  std::string names;
  for (const CodecInfo& codec : codecs) names += (names.empty() ? "" : ",") + codec.name;
  return names.empty() ? "-" : names;
}

std::string CodecCounts(size_t voice, size_t fax, size_t faxInBand, size_t modem) {
  return std::to_string(voice) + "/" + std::to_string(fax) + "/" + std::to_string(faxInBand) + "/" +
         std::to_string(modem);
}

std::string Numbers(const std::list<unsigned short>& numbers) {
  std::string text;
  for (auto it = numbers.begin(); it != numbers.end();) {
    auto last = it;
    size_t run = 1;
    for (auto next = std::next(it); next != numbers.end() && *next == *last + 1; ++next, ++run)
      last = next;
    text += text.empty() ? "" : ",";
    if (run >= 3) {
      text += std::to_string(*it) + "-" + std::to_string(*last);
      it = std::next(last);
    } else {
      text += std::to_string(*it);
      ++it;
    }
  }
  return text;
}

std::string CasText(const std::list<std::pair<unsigned short, std::list<unsigned short>>>& spans) {
  std::string text;
  for (const auto& span : spans)
    text += (text.empty() ? "" : ";") + std::to_string(span.first) + "/" + Numbers(span.second);
  return text;
}

std::string KeysText(const KeySequence& keys) {
  std::string text;
  for (KeypadButton key : keys) {
    if (key >= 0x100 && key <= 0x109)
      text += static_cast<char>('0' + (key - 0x100));
    else if (key == 0x12A)
      text += '*';
    else if (key == 0x123)
      text += '#';
    else if (key == 0x8F0)
      text += 'f';
    else
      text += "<" + HexText(static_cast<uint32_t>(key)) + ">";
  }
  return text;
}

std::string HexText(uint32_t value) {
  char buffer[16];
  snprintf(buffer, sizeof buffer, "0x%X", static_cast<unsigned>(value));
  return buffer;
}

std::string DestinationText(const ForwardParams& destination) {
  switch (destination.callType) {
    case kCallSip:
      return "SIP " + SipText(destination.userName, destination.host, destination.port);
    case kCallPstn:
      return destination.userName.empty() ? "PSTN trunk" : "PSTN " + destination.userName;
    default: return CallTypeName(destination.callType) + " " + destination.userName;
  }
}

nlohmann::json EndpointJson(const std::string& text) {
  return text == "-" ? nlohmann::json(nullptr) : nlohmann::json(text);
}

}  // namespace cmcfg_tool
