#ifndef CMCFG_PLATFORM_BLOCKS_SETTINGS_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_SETTINGS_ACCESSOR_H_

#include <string>
#include <utility>

#include "platform/base/status.h"
#include "platform/blocks/settings_fields.h"
#include "platform/blocks/shared_accessor.h"

// Base of a settings accessor: a class whose public members are the values
// of one settings file, mapped by a static table of fields (the file's key
// for each member, in its section). Shared instance and thread rule of
// SharedAccessor. Owner derives from SettingsAccessor<Owner>, default
// values are its members' initialisers, and it befriends both this template
// and SharedAccessor<Owner> for its private constructor from the path.
template <typename Owner>
class SettingsAccessor : public SharedAccessor<Owner> {
 public:
  // Reads the file again into a fresh object, whose values then replace
  // these: keys dropped from the file since the last read fall back to the
  // defaults. Not ok (values unchanged) when the file is missing or cannot
  // be read. Caller holds Lock when other threads may use the instance.
  cfg::Status LoadStatus() {
    try {
      // What a save compares against while the file was never read.
      if (known_.empty()) known_ = blocks::FormatFields(self(), fields_);
      Owner fresh(path_);
      cfg::Status status = blocks::LoadFields(path_, fields_, &fresh, &fresh.known_);
      if (status.ok()) self() = fresh;
      return status;
    } catch (...) {  // out of memory
      return cfg::Status::IOError("out of memory");
    }
  }
  // LoadStatus as a bool: true when the file was read.
  bool Reload() { return LoadStatus().ok(); }
  // Writes the values changed since the file was read or last saved,
  // atomically and under the file's lock; values another process saved in
  // the meantime survive unless changed here too. True also when nothing
  // changed. False, the file untouched, when it cannot be written or a
  // list value holds a name with a comma (the next read would split it).
  // Under Lock as Reload.
  bool Save() { return blocks::SaveFields(path_, fields_, self(), &known_); }

  // The keys the accessor reads from its file, by section, and which
  // values it takes (for checkers; reads no file).
  static cfg::SectionRules KeyRules() { return blocks::RulesOf(Owner(std::string()).fields_); }

 protected:
  SettingsAccessor(std::string path, blocks::SettingTable<Owner> fields)
      : path_(std::move(path)), fields_(fields) {}
  ~SettingsAccessor() = default;
  SettingsAccessor(const SettingsAccessor&) = default;
  SettingsAccessor& operator=(const SettingsAccessor&) = default;

 private:
  Owner& self() { return static_cast<Owner&>(*this); }

  std::string path_;
  blocks::SettingTable<Owner> fields_;
  blocks::FieldTexts known_;  // value texts as last read or saved
};

#endif  // CMCFG_PLATFORM_BLOCKS_SETTINGS_ACCESSOR_H_
