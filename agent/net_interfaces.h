#ifndef CMCFG_AGENT_NET_INTERFACES_H_
#define CMCFG_AGENT_NET_INTERFACES_H_

#include <string>

namespace agent_internal {

// GetWanIfName's work on any file: -1 when it cannot be opened (name left
// as it was); otherwise the name is the file's first read (at most 512
// bytes) cut to its first..last printable, non-blank character, and the
// result is that of closing the file.
int ReadInterfaceName(const char* path, std::string& name);

}  // namespace agent_internal

#endif  // CMCFG_AGENT_NET_INTERFACES_H_
