#ifndef CMCFG_TOOLS_FORMAT_H_
#define CMCFG_TOOLS_FORMAT_H_

// Text and JSON forms of the agent's records, shared by the tool's verbs so
// that "show" and "ext" write a value the same way.

#include <list>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "cmcfg/codec_info.h"
#include "cmcfg/line_records.h"
#include "cmcfg/sup_service_records.h"
#include "cmcfg/types.h"

namespace cmcfg_tool {

// "user", "pickup", ... for an extension kind.
const char* TypeName(ExtType type);
// "number", "SIP", "PSTN", "from phone" for a call type (others: "type N").
std::string CallTypeName(int type);

// "user@host:port"; the "@host" and ":port" parts only when not empty, and
// "-" when all three are empty.
std::string SipText(const std::string& user, const std::string& host, const std::string& port);

// "MG{gateway}<line>", or "-" when either is INACTIVE_PARTY.
std::string EndpointText(uint32_t gatewayId, uint32_t lineId);
// The local FXS endpoint of a line.
std::string LocalEndpoint(const LineSettings& line);
// The remote FXS endpoint of a line; "-" unless line.remote.isRemote.
std::string RemoteEndpoint(const LineSettings& line);

// Codec names separated by ","; "-" for an empty list.
std::string CodecNames(const std::list<CodecInfo>& codecs);
// "voice/fax relay/fax in band/modem" counts, e.g. "3/1/0/0".
std::string CodecCounts(size_t voice, size_t fax, size_t faxInBand, size_t modem);

// "1,2,5-9": runs of three or more consecutive numbers as ranges; "" when
// empty.
std::string Numbers(const std::list<unsigned short>& numbers);
// "0/1-15,17-31;1/1,2": each span with its slots.
std::string CasText(const std::list<std::pair<unsigned short, std::list<unsigned short>>>& spans);

// A key sequence as typed on the keypad: digits, "*", "#", "f" for the hook
// flash; a value with no key of its own as "<0x...>".
std::string KeysText(const KeySequence& keys);
// "0x801", "0xA80F": a service key in upper-case hexadecimal.
std::string HexText(uint32_t value);

// A forwarding or speed-dial destination: its call type, then the number
// (a SIP one as user@host:port); a PSTN one without a number is the trunk.
std::string DestinationText(const ForwardParams& destination);

// The endpoint text, or null when unbound.
nlohmann::json EndpointJson(const std::string& text);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_FORMAT_H_
