#ifndef CMCFG_TOOLS_DUMP_H_
#define CMCFG_TOOLS_DUMP_H_

#include <functional>
#include <iosfwd>
#include <string>

#include <nlohmann/json.hpp>

class CMAgent;

namespace cmcfg_tool {

// Options of "cmcfg dump".
struct DumpOptions {
  std::string root;    // "" : "ORBA_PATH", else the built-in default
  std::string logDir;  // "" : relative logs go to the current directory
  bool json = true;    // the dump is JSON only; the flag is accepted for symmetry
};

// A JSON value with its keys in the order they were written.
nlohmann::ordered_json ToOrdered(const nlohmann::json& value);

// Serialises a JSON value, indented by two, ending in a newline. Text
// values are bytes: an invalid UTF-8 sequence becomes U+FFFD instead of
// aborting the output.
std::string JsonText(const nlohmann::json& value);
std::string JsonText(const nlohmann::ordered_json& value);

// Every record a loaded agent holds, as one document in a fixed key order
// (see docs/man/dump.md): the extension table with each extension as "ext
// --json" gives it, the attendants, the system attendant, the general
// data, the system messages, call records, external users, auto-login
// phones and tones. Passwords appear only as whether they are set.
// Holds the whole document: for comparing roots, not for printing a large
// one.
nlohmann::ordered_json DumpJson(const CMAgent& agent);

// DumpJson(agent) one record at a time, for comparing large roots: calls
// onRecord(array, record) for each element of "extensions" and
// "attendants" in order (the record in the dump's key order), and returns
// the rest of the document, where those two arrays are empty.
nlohmann::ordered_json DumpJsonByRecord(
    const CMAgent& agent,
    const std::function<void(const std::string& array, nlohmann::ordered_json record)>& onRecord);

// Prints DumpJson(agent) to out exactly as JsonText would, but one record at
// a time: memory stays at one record's JSON whatever the root's size. The
// agent must stay loaded until it returns.
void WriteDumpJson(const CMAgent& agent, std::ostream& out);

// The number of extension and attendant files under the root's extension
// database, "1,234" style.
std::string ExtensionFileCount(const std::string& root);

// "cmcfg dump": 0 when printed (through WriteDumpJson), 2 (one line on err)
// when the root is not usable.
int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_DUMP_H_
