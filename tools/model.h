#ifndef CMCFG_TOOLS_MODEL_H_
#define CMCFG_TOOLS_MODEL_H_

// The records the agent holds, each built once as an ordered tree. Every
// verb renders these trees: as JSON they are printed as they are, as text
// they are walked (tools/text_render.h), and diff compares them. A key's
// place in its tree is the place every output shows it.

#include <nlohmann/json.hpp>
#include <string>

#include "cmcfg/sup_service_records.h"

class Attendant;
class CMAgent;
class ExtensionData;

namespace cmcfg_tool {

// One record: objects keep their keys in insertion order.
using Tree = nlohmann::ordered_json;

// The SIP user name as the store holds it (after the system prefix the
// agent puts in front), followed by "…" for the token the agent appends on
// every load: "office-109…". The same root therefore prints the same bytes.
std::string StoredUserName(const std::string& loaded);

// `path` relative to `root` (which ends in "/") when it lies below it, so
// that a root prints the same wherever it is; other paths as they are.
std::string RootRelative(const std::string& path, const std::string& root);

// How much of a record a tree holds: all of it, or what "show" keeps
// (SummaryOf).
enum class Detail { kFull, kSummary };

// Everything loaded for one extension: name, type, description, sip,
// personal, services, line, media, functional_table, speed_dial,
// address_book, pstn, access_list, group_members. Passwords only as
// whether one is set. With Detail::kSummary, SummaryOf that tree, built
// without the parts it drops.
Tree ExtensionTree(const ExtensionData& extension, Detail detail = Detail::kFull);

// One forward of a contact: active, text, destinations (each with its
// text first, then type, user, host and port).
Tree ForwardTree(const ForwardData& forward);

// One address-book entry: the contact and every service it holds.
Tree ContactTree(const AddressBookEntry& entry);

// Everything loaded for one attendant console.
Tree AttendantTree(const Attendant& attendant, bool systemAttendant);

// The keys of an extension or attendant tree that "show" keeps; the rest
// is for "ext" and "dump".
Tree SummaryOf(const Tree& record);

// The system settings, each a tree: "general", "call_records",
// "external_user_cache", "external_users", "auto_login", "tones". Paths
// below `root` are relative to it.
Tree SystemTree(const CMAgent& agent, const std::string& root);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_MODEL_H_
