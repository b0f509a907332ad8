#include "tools/write_back.h"

#include <cstdlib>
#include <iomanip>
#include <optional>
#include <ostream>
#include <set>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "tools/ext.h"
#include "tools/format.h"
#include "tools/session.h"

namespace cmcfg_tool {
namespace {

// One "  label              value" line, as "ext" writes its rows.
void Row(std::ostream& out, const std::string& label, const std::string& value) {
  out << "  " << std::left << std::setw(19) << label << value << "\n";
}

std::string OnOff(int32_t value) { return value != 0 ? "on" : "off"; }

std::string Join(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ",") + item;
  return text;
}

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

ExtensionData* FindExtension(CMAgent& agent, const std::string& name) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  return nullptr;
}

// Loads the agent over the options' root, finds the extension and runs
// body(agent, extension, root); the statuses of a missing root or
// extension otherwise.
template <typename Body>
int WithExtension(const TargetOptions& options, std::ostream& err, Body body) {
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return 2;
  AgentSession session(root, options.logDir);
  CMAgent& agent = session.agent();
  ExtensionData* extension = FindExtension(agent, options.name);
  if (extension == nullptr) {
    if (FindRecord(agent, options.name).attendant != nullptr)
      err << "cmcfg: \"" << options.name
          << "\" is an attendant; these operations act on extensions only\n";
    else
      err << "cmcfg: no extension named \"" << options.name << "\" under " << root << "\n";
    return 1;
  }
  return body(agent, *extension, root);
}

// The extension's file under the root, as extensiondb.md lays them out.
std::string ExtensionFile(const std::string& root, const ExtensionData& extension) {
  static const char* const kFolders[] = {"attendant", "user", "pickup", "callpark", "paging"};
  const int type = static_cast<int>(extension.type);
  const char* folder = type >= 0 && type < 5 ? kFolders[type] : "user";
  return root + "telephony/extensiondb/" + folder + "/" + extension.name + ".cfg";
}

// Puts the contents of `source` in place of `target` the way the web
// configuration saves a file: under the target's lock, atomically, so the
// agent reads either the old file or the new one. False after one line on
// err.
bool PutInPlace(const std::string& source, const std::string& target, std::ostream& out,
                std::ostream& err) {
  cfg::FileSystem* fs = cfg::FileSystem::Default();
  std::string contents;
  cfg::Status status = fs->ReadFile(source, &contents);
  if (status.ok()) {
    cfg::FileLock lock(target);
    status = lock.locked() ? fs->WriteFileAtomic(target, contents)
                           : cfg::Status::IOError("cannot lock " + target + ".lock");
  }
  if (!status.ok()) {
    err << "cmcfg: cannot put " << source << " in place of " << target << ": "
        << status.ToString() << "\n";
    return false;
  }
  out << "Put " << source << " in place of " << target << "\n";
  return true;
}

// The address book as the store holds it now, read into a scratch record
// so that the loaded record stays as the call left it; nothing when the
// extension's file or its contacts cannot be read. It explains failures
// and checks that a change reached the file.
std::optional<std::list<AddressBookEntry>> StoredBook(CMAgent& agent,
                                                      const ExtensionData& extension) {
  ExtensionData scratch;
  scratch.name = extension.name;
  scratch.type = extension.type;
  if (!agent.LoadAddressBook(&scratch)) return std::nullopt;
  return scratch.addressBook;
}

const AddressBookEntry* FindById(const std::list<AddressBookEntry>& book, long id) {
  for (const AddressBookEntry& entry : book)
    if (entry.first.id == id) return &entry;
  return nullptr;
}

// ---- forward

const AddressBookEntry* AnyCaller(const ExtensionData& extension) {
  for (const AddressBookEntry& entry : extension.addressBook)
    if (entry.first.name == "*") return &entry;
  return nullptr;
}

// "off "In a meeting": number 101, from phone 0612345678".
std::string ForwardText(const ForwardData& forward) {
  std::string text = OnOff(forward.active);
  if (!forward.text.empty()) text += " \"" + forward.text + "\"";
  text += ":";
  if (forward.destinations.empty()) text += " -";
  const char* separator = " ";
  for (const ForwardParams& destination : forward.destinations) {
    text += separator + DestinationText(destination);
    separator = ", ";
  }
  return text;
}

std::string ForwardCommand(const ForwardOptions& options) {
  switch (options.action) {
    case ForwardAction::kOn: return "forward " + options.name + " on " + options.number;
    case ForwardAction::kOff: return "forward " + options.name + " off";
    case ForwardAction::kToggle: break;
  }
  return "forward " + options.name + " toggle";
}

// Why the forward operation gave false, worked out from the record and the
// store as they are after the call (the operation does not say).
std::string ForwardFailure(CMAgent& agent, const ExtensionData& extension,
                           const ForwardOptions& options) {
  const std::optional<std::list<AddressBookEntry>> stored = StoredBook(agent, extension);
  if (!stored) return "the file of " + extension.name + " or its contacts could not be read";
  const AddressBookEntry* anyCaller = AnyCaller(extension);
  const AddressBookEntry* storedAnyCaller =
      anyCaller ? FindById(*stored, anyCaller->first.id) : nullptr;
  if (storedAnyCaller == nullptr)
    return extension.name + " has no any-caller contact (\"*\") in its address book";
  if (options.action == ForwardAction::kOff) return "no destination set from the phone to remove";
  if (options.action == ForwardAction::kOn && !options.replace) {
    for (const ForwardParams& d : storedAnyCaller->second.forwardUnconditional.destinations)
      if (d.callType == kCallFromPhone)
        return "a different number (" + d.userName + ") is set from the phone; use --replace";
    return "a different number is set from the phone; use --replace";
  }
  return "the forward could not be stored (see cmcfg.log)";
}

// ---- block

std::string Direction(bool incoming) { return incoming ? "incoming" : "outgoing"; }

const AddressBookEntry* FindContact(const ExtensionData& extension, const std::string& name,
                                    CallType type) {
  for (const AddressBookEntry& entry : extension.addressBook)
    if (entry.first.name == name && entry.first.callType == type) return &entry;
  return nullptr;
}

// "contact 0900* (PSTN, id 2), blocking in on (mode 1)" or "no contact ...".
std::string BlockingText(const AddressBookEntry* entry, const BlockOptions& options) {
  if (entry == nullptr)
    return "no contact " + options.number + " (" + CallTypeName(options.callType) + ")";
  const CallBlockingData& blocking =
      options.incoming ? entry->second.incomingBlocking : entry->second.outgoingBlocking;
  std::string text = "contact " + entry->first.name + " (" + CallTypeName(entry->first.callType) +
                     ", id " + std::to_string(entry->first.id) + "), blocking " +
                     (options.incoming ? "in " : "out ") + OnOff(blocking.active);
  if (blocking.active) text += " (mode " + std::to_string(blocking.blockMode) + ")";
  return text;
}

// ---- contact

std::vector<Contact> Contacts(const ExtensionData& extension) {
  std::vector<Contact> contacts;
  for (const AddressBookEntry& entry : extension.addressBook) contacts.push_back(entry.first);
  return contacts;
}

void PrintBook(const std::string& heading, const std::vector<Contact>& contacts,
               std::ostream& out) {
  out << heading << ": " << contacts.size() << "\n";
  for (const Contact& c : contacts)
    Row(out, c.name, CallTypeName(c.callType) + ", id " + std::to_string(c.id));
}

// The identifiers as the operation splits them: every piece between commas,
// empty ones included.
std::vector<std::string> Pieces(const std::string& ids) {
  std::vector<std::string> pieces;
  if (ids.empty()) return pieces;
  size_t start = 0;
  for (size_t end; (end = ids.find(',', start)) != std::string::npos; start = end + 1)
    pieces.push_back(ids.substr(start, end - start));
  pieces.push_back(ids.substr(start));
  return pieces;
}

const char* ModeName(UpdateTypeCodes::UpdateTypeMode mode) {
  switch (mode) {
    case UpdateTypeCodes::kModeAdd: return "add";
    case UpdateTypeCodes::kModeChange: return "change";
    case UpdateTypeCodes::kModeErase: break;
  }
  return "erase";
}

// Why UpdateContact gave 0: it stops at the first identifier it cannot
// apply. An erase needs the contact in the book as it was before the call
// (minus those the call erased first); an add or change needs it in the file.
std::string ContactFailure(CMAgent& agent, const ExtensionData& extension,
                           const ContactOptions& options, const std::vector<Contact>& before) {
  std::set<long> known;
  const bool erase = options.mode == UpdateTypeCodes::kModeErase;
  if (erase) {
    for (const Contact& c : before) known.insert(c.id);
  } else {
    const std::optional<std::list<AddressBookEntry>> stored = StoredBook(agent, extension);
    if (!stored)
      return "the file of " + extension.name +
             " or its contacts could not be read; nothing was applied";
    for (const AddressBookEntry& entry : *stored) known.insert(entry.first.id);
  }
  const std::vector<std::string> pieces = Pieces(options.ids);
  for (size_t i = 0; i < pieces.size(); ++i) {
    const long id = std::strtol(pieces[i].c_str(), nullptr, 10);
    if (id > 0 && known.count(id) != 0) {
      if (erase) known.erase(id);
      continue;
    }
    std::string text = "no such contact ID " + pieces[i] + " in the " +
                       (erase ? "address book" : "file") + " of " + extension.name + "; ";
    const std::vector<std::string> applied(pieces.begin(), pieces.begin() + i);
    const std::vector<std::string> skipped(pieces.begin() + i + 1, pieces.end());
    text += applied.empty() ? "nothing was applied"
                            : "the identifiers before it (" + Join(applied) + ") were applied";
    if (!skipped.empty()) text += ", those after it (" + Join(skipped) + ") were not";
    return text;
  }
  return "the operation stopped early (see cmcfg.log)";
}

// ---- port

struct Binding {
  const ExtensionData* extension;
  uint32_t gatewayId;
  uint32_t lineId;
  uint32_t presentationId;
};

std::vector<Binding> Bindings(const CMAgent& agent) {
  std::vector<Binding> bindings;
  for (const ExtensionData* e : agent.extensionBase)
    if (e != nullptr)
      bindings.push_back({e, e->line.gatewayId, e->line.lineId, e->line.presentationId});
  return bindings;
}

}  // namespace

int RunForward(const ForwardOptions& options, std::ostream& out, std::ostream& err) {
  return WithExtension(options, err, [&](CMAgent& agent, ExtensionData& extension,
                                         const std::string&) {
    const AddressBookEntry* anyCaller = AnyCaller(extension);
    const std::string before =
        anyCaller ? ForwardText(anyCaller->second.forwardUnconditional) : "";
    bool done;
    {
      BaseLock lock(agent);
      done = options.action == ForwardAction::kToggle
                 ? agent.SwitchForwardService(&extension)
                 : options.action == ForwardAction::kOn
                       ? agent.UpdateForwardService(&extension, options.number, true,
                                                    options.replace)
                       : agent.UpdateForwardService(&extension, "", false, false);
    }
    if (!done) {
      err << "cmcfg: " << ForwardCommand(options) << ": "
          << ForwardFailure(agent, extension, options) << "\n";
      return 1;
    }
    anyCaller = AnyCaller(extension);  // the call succeeded, so it is there
    const std::string after = ForwardText(anyCaller->second.forwardUnconditional);
    out << "Forward unconditional of " << extension.name << " (any-caller contact, id "
        << anyCaller->first.id << ")\n";
    Row(out, "before", before);
    Row(out, "after", after);
    if (before == after)
      out << "Nothing was stored: " << options.number
          << " is already the destination set from the phone.\n";
    // The operation reports success even when the store refused the save;
    // an engineer reproducing a fault needs to know the file was not changed.
    const std::optional<std::list<AddressBookEntry>> stored = StoredBook(agent, extension);
    const AddressBookEntry* storedAnyCaller =
        stored ? FindById(*stored, anyCaller->first.id) : nullptr;
    if (storedAnyCaller == nullptr ||
        ForwardText(storedAnyCaller->second.forwardUnconditional) != after)
      err << "cmcfg: warning: the operation succeeded but the file of " << extension.name
          << " does not hold the change (see cmcfg.log)\n";
    return 0;
  });
}

int RunBlock(const BlockOptions& options, std::ostream& out, std::ostream& err) {
  return WithExtension(options, err, [&](CMAgent& agent, ExtensionData& extension,
                                         const std::string&) {
    const std::string before =
        BlockingText(FindContact(extension, options.number, options.callType), options);
    int result;
    {
      BaseLock lock(agent);
      result = agent.BlockContact(&extension, options.number, options.callType, options.incoming);
    }
    const std::string list =
        "the " + Direction(options.incoming) + " black list of " + extension.name;
    if (result == 1) {
      out << "already blocked: " << options.number << " (" << CallTypeName(options.callType)
          << ") is on " << list << "; nothing was stored\n";
      return 0;
    }
    if (result != 0) {
      const std::string why =
          StoredBook(agent, extension)
              ? "the contact or its services could not be stored (see cmcfg.log)"
              : "the file of " + extension.name + " or its contacts could not be read";
      err << "cmcfg: could not add " << options.number << " to " << list << ": " << why << "\n";
      return 1;
    }
    out << "added " << options.number << " to " << list << "\n";
    Row(out, "before", before);
    Row(out, "after",
        BlockingText(FindContact(extension, options.number, options.callType), options));
    return 0;
  });
}

int RunContact(const ContactOptions& options, std::ostream& out, std::ostream& err) {
  return WithExtension(options, err, [&](CMAgent& agent, ExtensionData& extension,
                                         const std::string& root) {
    const std::vector<Contact> before = Contacts(extension);
    if (!options.edited.empty() &&
        !PutInPlace(options.edited, ExtensionFile(root, extension), out, err))
      return 1;
    int result;
    {
      BaseLock lock(agent);
      result = agent.UpdateContact(&extension, options.ids, options.mode);
    }
    // Printed on failure as well: the identifiers before an unknown one
    // were applied.
    PrintBook("Address book of " + extension.name + " before", before, out);
    PrintBook("Address book of " + extension.name + " after", Contacts(extension), out);
    if (result != 1) {
      err << "cmcfg: contact " << extension.name << " " << ModeName(options.mode) << " "
          << options.ids << ": " << ContactFailure(agent, extension, options, before) << "\n";
      return 1;
    }
    return 0;
  });
}

int RunPort(const PortOptions& options, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return 2;
  AgentSession session(root, options.logDir);
  CMAgent& agent = session.agent();
  const std::string port = "MG{" + std::to_string(options.gatewayId) + "}<" +
                           std::to_string(options.lineId) + ">";
  const std::vector<Binding> before = Bindings(agent);
  if (!options.edited.empty() && !PutInPlace(options.edited, root + "telephony/linedb", out, err))
    return 1;
  bool done;
  {
    BaseLock lock(agent);
    done = agent.UpdateFxsData(options.gatewayId, options.lineId);
  }
  std::vector<std::pair<std::string, std::string>> changes;
  for (const Binding& b : before) {
    const LineSettings& now = b.extension->line;
    if (now.gatewayId == b.gatewayId && now.lineId == b.lineId &&
        now.presentationId == b.presentationId)
      continue;
    std::string text = EndpointText(b.gatewayId, b.lineId) + " -> " + LocalEndpoint(now);
    if (now.gatewayId == b.gatewayId && now.lineId == b.lineId)
      text += " (presentation id " + std::to_string(b.presentationId) + " -> " +
              std::to_string(now.presentationId) + ")";
    changes.emplace_back(b.extension->name, text);
  }
  if (done || !changes.empty()) {
    out << "FXS port " << port << ": ";
    if (changes.empty())
      out << "no binding changed\n";
    else
      out << changes.size() << (changes.size() == 1 ? " binding" : " bindings") << " changed\n";
    for (const auto& change : changes) Row(out, change.first, change.second);
  }
  if (done) return 0;
  if (changes.empty())
    err << "cmcfg: port " << port
        << ": unknown gateway or port (or the line database gives it to no loaded extension)\n";
  else
    err << "cmcfg: port " << port
        << ": the line database gives it to no loaded extension; its holders were unbound\n";
  return 1;
}

}  // namespace cmcfg_tool
