// "contact" and "port": the verbs that change a file first and then have
// the agent take the change, as the call manager does when the web
// configuration tells it.
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/document_store.h"
#include "platform/extension/extension_rep.h"
#include "platform/extension/value_rules.h"
#include "tools/format.h"
#include "tools/model.h"
#include "tools/root_files.h"
#include "tools/session.h"
#include "tools/text_render.h"
#include "tools/unified_diff.h"
#include "tools/write_back.h"
#include "tools/write_target.h"

namespace cmcfg_tool {
namespace {

CallType ContactCallType(const std::string& text) {
  return text == "sip" || text == "SIP"     ? kCallSip
         : text == "pstn" || text == "PSTN" ? kCallPstn
                                            : kCallNumber;
}

// The contacts of the book (name, call type, id), rendered as every record is.
void PrintBook(const std::string& heading, const ExtensionData& extension, std::ostream& out) {
  Tree shown = Tree::object();
  Tree& book = shown[heading] = Tree::array();
  for (const AddressBookEntry& entry : extension.addressBook) {
    Tree& contact = book.emplace_back(Tree::object());
    contact["name"] = entry.first.name;
    contact["call_type"] = CallTypeName(entry.first.callType);
    contact["id"] = entry.first.id;
  }
  RenderText(shown, out);
}

// The highest contact id of the file plus one.
unsigned long NextContactId(const cfg::Document& doc) {
  unsigned long next = 1, id = 0;
  for (const cfg::Section& section : doc.sections())
    if (extdb::ContactId(section.name, &id) && id >= next) next = id + 1;
  return next;
}

// Writes the change of `mode` into `file` under its lock; the contact's id
// (decided there for an add) in *id. False after one line on err.
bool WriteContactChange(const std::string& file, UpdateTypeCodes::UpdateTypeMode mode,
                        const std::string& name, CallType type, unsigned long* id,
                        std::ostream& err) {
  bool known = true;
  const cfg::Status saved = cfg::UpdateDocument(file, [&](cfg::Document& doc) {
    if (mode == UpdateTypeCodes::kModeAdd) *id = NextContactId(doc);
    const std::string own = extdb::ContactSection(*id);
    known = mode == UpdateTypeCodes::kModeAdd || doc.Find(own) != nullptr;
    if (!known) return false;
    if (mode != UpdateTypeCodes::kModeErase) {
      AddressPatternBlock block;
      block.id = *id;
      block.name = name;
      block.callType = type;
      extdb::WriteContact(block, &doc);
      // A new any-caller contact comes with its forward, off, so that the
      // forward verbs have one to act on.
      if (mode == UpdateTypeCodes::kModeAdd && name == gAny)
        doc.Set(doc.Add(extdb::ServiceSection(*id, "forward_unconditional")), "active", "0");
      return true;
    }
    // The contact's own section and those of its services ("contact ID ...").
    for (size_t i = doc.size(); i-- > 0;) {
      const std::string section(doc[i].name);
      if (section == own || section.compare(0, own.size() + 1, own + " ") == 0) doc.Erase(i);
    }
    return true;
  });
  if (!known) {
    err << "cmcfg: " << file << " has no contact " << *id << "\n";
    return false;
  }
  if (saved.ok()) return true;
  err << "cmcfg: could not write contact " << *id << " into " << file << ": " << saved.ToString()
      << "\n";
  return false;
}

bool ParseId(const std::string& text, unsigned long* id, std::ostream& err) {
  const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  if (digits && text.size() < 10) *id = std::stoul(text);
  if (digits && text.size() < 10 && *id > 0) return true;
  err << "cmcfg contact: \"" << text << "\" is not a contact id\n";
  return false;
}

}  // namespace

int RunContact(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::vector<std::string>& words = invocation.operands;
  const std::string& mode = words.at(1);
  const auto modeCode = mode == "add"      ? UpdateTypeCodes::kModeAdd
                        : mode == "change" ? UpdateTypeCodes::kModeChange
                                           : UpdateTypeCodes::kModeErase;
  const bool edited = !invocation.edited.empty();
  const size_t wanted = edited || mode == "erase" || mode == "add" ? 3 : 4;
  if ((mode != "add" && mode != "change" && mode != "erase") || words.size() != wanted) {
    err << "cmcfg contact: expected EXT add NAME, EXT change ID NAME, EXT erase ID, or EXT "
           "add|change|erase IDS --edited FILE\n";
    return kUsage;
  }
  const CallType type = ContactCallType(invocation.callType);
  unsigned long id = 0;
  if (!edited && mode != "add" && !ParseId(words[2], &id, err)) return kUsage;
  const std::string name = edited             ? ""
                           : mode == "add"    ? words[2]
                           : mode == "change" ? words[3]
                                              : "";
  if (!edited && mode != "erase") {
    const cfg::Status valid = extdb::CheckContactName(type, name);
    if (!valid.ok()) {
      err << "cmcfg: " << valid.message() << "\n";
      return kFindings;
    }
  }
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  const std::string& extensionName = words[0];
  const WriteRoot target(root, {extensionName}, invocation.dryRun);
  if (target.path().empty()) return kFindings;
  AgentSession session(target.path(), invocation.logDir);
  CMAgent& agent = session.agent();
  ExtensionData* extension = FindExtension(agent, extensionName, err);
  if (extension == nullptr) return kFindings;
  const std::string relative = ExtensionFileOf(*extension);
  const std::string file = target.path() + relative;
  if (edited) {
    if (!PassesCheck(root, extensionName, relative, invocation.edited, err) ||
        !PutInPlace(invocation.edited, file, err))
      return kFindings;
  } else if (!WriteContactChange(file, modeCode, name, type, &id, err)) {
    return kFindings;
  }
  std::ostringstream report;
  std::ostream& shown = invocation.dryRun ? report : out;
  PrintBook("address book of " + extension->name + " before", *extension, shown);
  int applied;
  {
    BaseLock lock(agent);
    applied = agent.UpdateContact(extension, edited ? words[2] : std::to_string(id), modeCode);
  }
  PrintBook("address book of " + extension->name + " after", *extension, shown);
  if (invocation.dryRun) target.PrintDiff(relative, out);
  if (applied == 1) return kOk;
  err << "cmcfg: the agent could not take contact " << (edited ? words[2] : std::to_string(id))
      << " from " << relative << " (see --log-dir)\n";
  return kFindings;
}

int RunPort(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  // Numbers as the user gave them: parsed only to be handed on.
  const std::string& gateway = invocation.operands.at(0);
  const std::string& line = invocation.operands.at(1);
  for (const std::string* number : {&gateway, &line})
    if (number->empty() || number->size() > 9 ||
        number->find_first_not_of("0123456789") != std::string::npos) {
      err << "cmcfg port: \"" << *number << "\" is not a gateway or line number (0 to 999999999)\n";
      return kUsage;
    }
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  const std::string relative = "telephony/linedb";
  if (!invocation.edited.empty() && !PassesCheck(root, "", relative, invocation.edited, err))
    return kFindings;
  if (invocation.dryRun) {  // only the line database would be written
    const std::string diff =
        invocation.edited.empty()
            ? ""
            : UnifiedDiff(relative, FileBytes(root + relative), FileBytes(invocation.edited));
    out << (diff.empty() ? "nothing would be written\n" : diff);
    return kOk;
  }
  const WriteRoot target(root, {}, false);
  AgentSession session(target.path(), invocation.logDir);
  CMAgent& agent = session.agent();
  std::vector<std::pair<const ExtensionData*, std::string>> before;
  for (const ExtensionData* e : agent.extensionBase)
    if (e != nullptr) before.emplace_back(e, LocalEndpoint(e->line));
  if (!invocation.edited.empty() && !PutInPlace(invocation.edited, target.path() + relative, err))
    return kFindings;
  bool done;
  {
    BaseLock lock(agent);
    done = agent.UpdateFxsData(std::stoul(gateway), std::stoul(line));
  }
  std::ostream& shown = out;
  shown << "FXS port MG{" << gateway << "}<" << line << ">\n";
  for (const auto& held : before)
    if (LocalEndpoint(held.first->line) != held.second)
      shown << "  " << held.first->name << "  " << held.second << " -> "
            << LocalEndpoint(held.first->line) << "\n";
  if (done) return kOk;
  err << "cmcfg: port MG{" << gateway << "}<" << line
      << ">: unknown gateway or port, or the line database gives it to no extension\n";
  return kFindings;
}

}  // namespace cmcfg_tool
