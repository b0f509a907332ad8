// The external users: users registered with the exchange that are not its
// extensions, read from a cache file that may be trimmed to its limit.
#include <sstream>

#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/config_root.h"
#include "platform/base/multi_section_file.h"
#include "platform/base/number_rules.h"
#include "platform/base/smart_buffer.h"

namespace {

std::string ReadText(Configuration::MultiSectionFile& file, const char* key, SmartBuffer& buffer) {
  file.GetSectionEntry(key, buffer.GetData(), buffer.GetSize());
  return buffer.GetData();
}

long ReadTime(Configuration::MultiSectionFile& file, const char* key, SmartBuffer& buffer) {
  return cfg::LeadingValue<long>(ReadText(file, key, buffer));
}

}  // namespace

bool CMAgent::GetExternalUserDB(const std::string& path, std::list<ExternalUserEntry>* users,
                                bool trim) {
  if (users == nullptr) return false;
  users->clear();
  Configuration::MultiSectionFile file(path, true, false, false, "section", "{\n", "}\n", "=", "#",
                                       nullptr);
  CMCFG_TRACE(this, "GetExternalUserDB: file - %s.\n", path.c_str());
  file.Restart();
  if (!file.GotoNextSection()) return false;

  if (trim && generalData.maxExternalUsers < 0) {
    // A negative limit would delete every user; it is a mistake, not a wish.
    CMCFG_TRACE(this, "GetExternalUserDB: impossible limit %d; the file is not trimmed.\n",
                static_cast<int>(generalData.maxExternalUsers));
  } else if (trim && !cfg::IsInsideRoot(path)) {
    CMCFG_TRACE(this, "GetExternalUserDB: %s is outside the configuration root; not trimmed.\n",
                path.c_str());
  } else if (trim) {
    long surplus = static_cast<long>(file.GetSectionCount()) - generalData.maxExternalUsers;
    if (surplus > 0) {
      // Users beyond the limit are dropped from the end of the file.
      for (long i = 0; i < surplus; ++i) {
        file.GotoLastSection();
        file.DeleteSection();
      }
      file.Save(true);
    }
  }

  file.Restart();
  SmartBuffer buffer;
  while (file.GotoNextSection()) {
    ExternalUserEntry user;
    user.e164Number = ReadText(file, "E164_phone_number", buffer);
    user.userName = ReadText(file, "user_name", buffer);
    user.displayName = ReadText(file, "user_display_name", buffer);
    user.host = ReadText(file, "user_host_address", buffer);
    user.port = ReadText(file, "user_host_port", buffer);
    user.registrationTime = ReadTime(file, "registration_date_and_time", buffer);
    users->push_back(user);
  }
  return true;
}
