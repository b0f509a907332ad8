#ifndef CMCFG_TOOLS_SHADOW_ROOT_H_
#define CMCFG_TOOLS_SHADOW_ROOT_H_

#include <string>
#include <vector>

#include "tools/session.h"

namespace cmcfg_tool {

// A root in a scratch folder that shows the agent only some extensions of
// `root`: its telephony/ holds every file of root's telephony/ (hard links
// where the file system allows, else copies; always copies with `copies`,
// for a root that will be written) except the extension
// database, of which it holds every file outside the kind folders and,
// in each kind folder, NAME.cfg for each of `names` the database accepts
// as a name. Loading it reads those
// files, the settings and the line database, not the whole database. Gone
// with the object; path() is "" when it could not be made.
class ShadowRoot {
 public:
  ShadowRoot(const std::string& root, const std::vector<std::string>& names, bool copies = false);
  ShadowRoot(const ShadowRoot&) = delete;
  ShadowRoot& operator=(const ShadowRoot&) = delete;
  // Ends in "/" unless empty.
  const std::string& path() const { return path_; }

 private:
  ScratchDir dir_;
  std::string path_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SHADOW_ROOT_H_
