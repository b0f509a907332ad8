// The tool's reads of a configuration root, made through the store's file
// system (platform/base/file_system.h) like every other read, so that what
// a test puts underneath (a file that cannot be read) is seen by the tool
// too.
#ifndef CMCFG_TOOLS_ROOT_FILES_H_
#define CMCFG_TOOLS_ROOT_FILES_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cmcfg_tool {

// The bytes of a file; "" when it is missing or cannot be read.
std::string FileBytes(const std::string& path);

// The lines of a file, each without its line break ("\r\n" too); none when
// it cannot be read.
std::vector<std::string> ReadLines(const std::string& path);

// The names of a folder's entries that are folders (`folders`) or regular
// files (otherwise), sorted; none when it cannot be listed.
std::vector<std::string> EntriesOf(const std::string& folder, bool folders);

// Every regular file below `dir`, by its path relative to `dir` ("a/b.cfg"),
// with its size; folders named in `skip` are not entered.
std::map<std::string, uint64_t> FilesBelow(const std::string& dir,
                                           const std::set<std::string>& skip = {});

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_ROOT_FILES_H_
