#ifndef CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_

#include <map>
#include <string>

// Number of a system message.
typedef int SysMessageID;

// The names of the system messages by number ("telephony/sysmessages.cfg",
// one section per message named by its number, holding "name = ...").
// Read-only. One shared, reference-counted instance per process; the file
// is read when it is created. GetInstance gives nullptr when the file is
// missing or cannot be read; CloseInstance after a failed GetInstance is
// harmless. Never changed after it is made, so any thread may read it
// without a lock.
class SysMessageAccessor {
 public:
  static SysMessageAccessor* GetInstance();
  static void CloseInstance();

  // The name of message `id`; false (name untouched) for a number the file
  // does not name.
  bool GetSysMessageName(SysMessageID id, std::string& name) const;
  size_t GetSysMessageCount() const { return names_.size(); }

 private:
  SysMessageAccessor() = default;
  ~SysMessageAccessor() = default;
  friend struct SysMessageAccessorInstance;
  std::map<SysMessageID, std::string> names_;
};

#endif  // CMCFG_PLATFORM_BLOCKS_SYS_MESSAGE_ACCESSOR_H_
