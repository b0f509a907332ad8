#ifndef CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_

#include <map>
#include <string>
#include <utility>

#include "platform/base/status.h"
#include "platform/blocks/shared_accessor.h"

// Number of a system message.
typedef int SysMessageID;

// The names of the system messages by number ("telephony/sysmessages.cfg",
// one section per message named by its number, holding "name = ...").
// Read-only. One shared, reference-counted instance per process
// (SharedAccessor); the file is read when it is created. GetInstance gives
// nullptr when the file is missing or cannot be read; CloseInstance after a
// failed GetInstance is harmless. Never changed after it is made, so any
// thread may read it without Lock.
class SysMessageAccessor : public SharedAccessor<SysMessageAccessor> {
 public:
  static constexpr const char* kFileName = "sysmessages.cfg";

  // The shared instance, or nullptr (see above).
  static SysMessageAccessor* GetInstance() { return SharedAccessor::GetInstance(false); }

  // The name of message `id`; false (name untouched) for a number the file
  // does not name.
  bool GetSysMessageName(SysMessageID id, std::string& name) const;
  size_t GetSysMessageCount() const { return names_.size(); }

 private:
  explicit SysMessageAccessor(std::string path) : path_(std::move(path)) {}
  ~SysMessageAccessor() = default;
  friend class SharedAccessor<SysMessageAccessor>;
  // Reads the names; not ok (no names) when the file cannot be read.
  cfg::Status LoadStatus();

  std::string path_;
  std::map<SysMessageID, std::string> names_;
};

#endif  // CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_
