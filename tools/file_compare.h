#ifndef CMCFG_TOOLS_FILE_COMPARE_H_
#define CMCFG_TOOLS_FILE_COMPARE_H_

#include <string>
#include <vector>

namespace cmcfg_tool {

// What differs between the files below two roots' telephony/ folders.
struct FileComparison {
  bool same = false;                    // the same names with the same bytes
  bool onlyExtensions = false;          // the same names; only extension files differ
  std::vector<std::string> extensions;  // then: the names of those extensions
};

// Compares every file below ROOT/telephony/ of the two roots (roots end in
// "/"): names, then sizes, then bytes. An extension file is
// telephony/extensiondb/KIND/NAME.cfg.
FileComparison CompareFiles(const std::string& rootA, const std::string& rootB);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_FILE_COMPARE_H_
