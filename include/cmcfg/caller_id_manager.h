#ifndef CMCFG_CALLER_ID_MANAGER_H_
#define CMCFG_CALLER_ID_MANAGER_H_

#include <list>
#include <string>

#include "cmcfg/call_params.h"
#include "cmcfg/export.h"

struct GeneralData;

// Builds the caller-identification text of a call from the general data's
// template for its call type. A template is literal text with placeholders
// %u (user part), %d (display name), %a (display name, else the address)
// and, for IP calls only, %h (host). Stateless.
class CMCFG_EXPORT CallerIDManager {
 public:
  enum CallType {
    kLocal = 0,  // template callerIdLocal
    kIp = 1,     // template callerIdIp; the only one that may show the host
    kPstn = 2,   // template callerIdPstn
  };

  CallerIDManager() = default;
  ~CallerIDManager() = default;

  // Splits `pattern` into literal and placeholder tokens (`tokens` is
  // emptied first; the last token is the literal tail, "" included); false,
  // with the tokens read so far, when it holds a placeholder the call type
  // does not allow or ends in a lone '%'.
  bool Check(CallType type, const std::string& pattern, std::list<std::string>& tokens);
  // Appends the caller-ID text for `caller` to `*result`, cut after its
  // first 1,024 bytes; false (result untouched) without a result string or
  // with an invalid template.
  bool Parse(CallType type, const CallParams& caller, const GeneralData& data,
             std::string* result);
};

#endif  // CMCFG_CALLER_ID_MANAGER_H_
