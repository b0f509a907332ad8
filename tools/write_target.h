#ifndef CMCFG_TOOLS_WRITE_TARGET_H_
#define CMCFG_TOOLS_WRITE_TARGET_H_

#include <iosfwd>
#include <memory>
#include <string>

#include "cmcfg/cm_agent.h"
#include "tools/session.h"
#include "tools/shadow_root.h"
#include "tools/verb.h"

namespace cmcfg_tool {

// The root a write verb changes: the root itself, or with --dry-run a
// scratch copy of what `names` need (a ShadowRoot of copies), so that the
// same change can be made and only its diff shown.
class WriteRoot {
 public:
  // `root` has passed RootIsUsable.
  WriteRoot(const std::string& root, const std::vector<std::string>& names, bool dryRun);
  // Where to load and write: the root, or the copy ("" when the copy could
  // not be made).
  const std::string& path() const { return path_; }
  // With --dry-run: the unified diff of the root's file `relative` against
  // the copy's, on out ("nothing would be written" when equal).
  void PrintDiff(const std::string& relative, std::ostream& out) const;

 private:
  std::string root_;
  std::unique_ptr<ShadowRoot> shadow_;
  std::string path_;
};

// "telephony/extensiondb/KIND/NAME.cfg" of an extension.
std::string ExtensionFileOf(const ExtensionData& extension);

// Refuses `file` as a replacement for `relative` under `root` when check
// finds an error in it: every finding of that file on err and false.
bool PassesCheck(const std::string& root, const std::string& name, const std::string& relative,
                 const std::string& file, std::ostream& err);

// Puts the contents of `source` in place of `target` the way the web
// configuration saves a file: under the target's lock, atomically. False
// after one line on err.
bool PutInPlace(const std::string& source, const std::string& target, std::ostream& err);

// The call manager holds the table's lock around every use of a record.
class BaseLock {
 public:
  explicit BaseLock(CMAgent& agent) : agent_(agent) { agent_.LockBase(); }
  ~BaseLock() { agent_.UnlockBase(); }
  BaseLock(const BaseLock&) = delete;
  BaseLock& operator=(const BaseLock&) = delete;

 private:
  CMAgent& agent_;
};

// The loaded extension `name`, or null after one line on err (an
// attendant is named as such).
ExtensionData* FindExtension(CMAgent& agent, const std::string& name, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_WRITE_TARGET_H_
