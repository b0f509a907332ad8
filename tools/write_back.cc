#include "tools/write_back.h"

#include <algorithm>
#include <functional>
#include <ostream>
#include <sstream>

#include "cmcfg/cm_agent.h"
#include "platform/base/document_store.h"
#include "platform/extension/extension_rep.h"
#include "platform/extension/value_rules.h"
#include "tools/format.h"
#include "tools/model.h"
#include "tools/session.h"
#include "tools/text_render.h"
#include "tools/write_target.h"

namespace cmcfg_tool {
namespace {

CallType CallTypeOf(const Invocation& invocation) {
  std::string type = invocation.callType;
  std::transform(type.begin(), type.end(), type.begin(), ::tolower);
  return type == "sip" ? kCallSip : type == "pstn" ? kCallPstn : kCallNumber;
}

// A value refused by the store's own rule: kFindings after its message.
int Refused(const cfg::Status& status, std::ostream& err) {
  err << "cmcfg: " << status.message() << "\n";
  return kFindings;
}

// A flag of a tree, stored as a number or a boolean.
bool On(const Tree& flag) {
  return flag.is_boolean() ? flag.get<bool>() : flag.get<int64_t>() != 0;
}

// "before" and "after" of one tree, as text.
void PrintChange(const std::string& heading, const Tree& before, const Tree& after,
                 std::ostream& out) {
  out << heading << "\n";
  Tree both = Tree::object();
  both["before"] = before;
  both["after"] = after;
  RenderText(both, out, 1);
}

// The loaded extension's change, made on the root or its dry-run copy:
// change(agent, extension, file) gives the status; the dry run's diff is
// printed when it succeeded.
template <typename Change>
int ChangeExtension(const Invocation& invocation, std::ostream& out, std::ostream& err,
                    Change change) {
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  const std::string& name = invocation.operands.at(0);
  const WriteRoot target(root, {name}, invocation.dryRun);
  if (target.path().empty()) {
    err << "cmcfg: cannot make a scratch copy of " << name << " for --dry-run\n";
    return kFindings;
  }
  AgentSession session(target.path(), invocation.logDir);
  ExtensionData* extension = FindExtension(session.agent(), name, err);
  if (extension == nullptr) return kFindings;
  const std::string relative = ExtensionFileOf(*extension);
  std::ostringstream report;
  const int status = change(session.agent(), *extension, target.path() + relative,
                            invocation.dryRun ? report : out);
  if (invocation.dryRun && status == kOk) target.PrintDiff(relative, out);
  return status;
}

// After an operation that reported success: kOk when the file holds what
// the agent now holds (`stored` re-read from it), else kFindings and why.
int Verified(const Tree& held, const Tree& stored, const std::string& file, std::ostream& err) {
  if (held == stored) return kOk;
  err << "cmcfg: the change was not stored in " << file
      << " (is its lock held by another process? see --log-dir)\n";
  return kFindings;
}

// The address book as the file holds it now, read into a scratch record.
std::list<AddressBookEntry> StoredBook(CMAgent& agent, const ExtensionData& extension) {
  ExtensionData scratch;
  scratch.name = extension.name;
  scratch.type = extension.type;
  agent.LoadAddressBook(&scratch);
  return scratch.addressBook;
}

const AddressBookEntry* FindContact(const std::list<AddressBookEntry>& book,
                                    const std::string& name, CallType type) {
  for (const AddressBookEntry& entry : book)
    if (entry.first.name == name && entry.first.callType == type) return &entry;
  return nullptr;
}

// The any-caller contact's unconditional forward; null without one.
Tree AnyCallerForward(const std::list<AddressBookEntry>& book) {
  for (const AddressBookEntry& entry : book)
    if (entry.first.name == gAny) return ForwardTree(entry.second.forwardUnconditional);
  return Tree();
}

Tree BlockingOf(const std::list<AddressBookEntry>& book, const std::string& number, CallType type,
                bool outgoing) {
  const AddressBookEntry* entry = FindContact(book, number, type);
  if (entry == nullptr) return Tree("no contact");
  const CallBlockingData& b =
      outgoing ? entry->second.outgoingBlocking : entry->second.incomingBlocking;
  Tree j = Tree::object();
  j["contact_id"] = entry->first.id;
  j["active"] = b.active;
  j["mode"] = b.blockMode;
  return j;
}

// Why a forward operation gave false, from the forward as stored now.
std::string ForwardFailure(const Tree& stored, const std::string& action) {
  bool fromPhone = false;
  for (const Tree& destination : stored.value("destinations", Tree::array()))
    fromPhone = fromPhone || destination["type"] == CallTypeName(kCallFromPhone);
  if (action == "set" && fromPhone)
    return "a different number is set from the phone; use --replace";
  if (action == "clear" && !fromPhone) return "no number set from the phone to remove";
  return "the any-caller contact holds no forward service yet (see --log-dir)";
}

}  // namespace

int RunForward(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::vector<std::string>& words = invocation.operands;
  const std::string& action = words.at(1);
  static const std::vector<std::string> kActions = {"on", "off", "toggle", "clear", "set"};
  if (std::find(kActions.begin(), kActions.end(), action) == kActions.end() ||
      (action == "set") != (words.size() == 3) || (invocation.replace && action != "set")) {
    err << "cmcfg forward: expected EXT on|off|toggle|clear, or EXT set NUMBER [--replace]\n";
    return kUsage;
  }
  if (action == "set") {
    const cfg::Status valid = extdb::CheckPhoneNumber(words[2]);
    if (!valid.ok()) return Refused(valid, err);
  }
  return ChangeExtension(
      invocation, out, err,
      [&](CMAgent& agent, ExtensionData& extension, const std::string& file,
          std::ostream& report) -> int {
        const Tree before = AnyCallerForward(extension.addressBook);
        if (before.is_null()) {
          err << "cmcfg: " << extension.name << " has no any-caller contact (\"*\"); add one with: "
              << "cmcfg contact " << extension.name << " add '*'\n";
          return kFindings;
        }
        const bool active = On(before["active"]);
        if ((action == "on" && active) || (action == "off" && !active)) {
          report << "forward unconditional of " << extension.name << " is already " << action
                 << "; nothing to change\n";
          return kOk;
        }
        bool done;
        {
          BaseLock lock(agent);
          if (action == "set" || action == "clear")
            done = agent.UpdateForwardService(&extension, action == "set" ? words[2] : "",
                                              action == "set", invocation.replace);
          else
            done = agent.SwitchForwardService(&extension);
        }
        if (!done) {
          err << "cmcfg: forward " << extension.name << " " << action << ": "
              << ForwardFailure(AnyCallerForward(StoredBook(agent, extension)), action) << "\n";
          return kFindings;
        }
        const Tree after = AnyCallerForward(extension.addressBook);
        PrintChange("forward unconditional of " + extension.name, before, after, report);
        return Verified(after, AnyCallerForward(StoredBook(agent, extension)), file, err);
      });
}

namespace {

// What the block and unblock verbs share: the number checked before
// anything loads, and its blocking in the direction asked for.
struct Blocking {
  const std::string& number;
  CallType type;
  bool outgoing;
  Tree before;
};
using BlockingChange = std::function<int(CMAgent&, ExtensionData&, const std::string& file,
                                         const Blocking&, std::ostream& report)>;

int ChangeBlocking(const Invocation& invocation, std::ostream& out, std::ostream& err,
                   const BlockingChange& change) {
  const std::string& number = invocation.operands.at(1);
  const CallType type = CallTypeOf(invocation);
  const cfg::Status valid = extdb::CheckContactName(type, number);
  if (!valid.ok()) return Refused(valid, err);
  return ChangeExtension(
      invocation, out, err,
      [&](CMAgent& agent, ExtensionData& extension, const std::string& file,
          std::ostream& report) -> int {
        const bool outgoing = invocation.outgoing;
        const Blocking blocking{number, type, outgoing,
                                BlockingOf(extension.addressBook, number, type, outgoing)};
        return change(agent, extension, file, blocking, report);
      });
}

std::string BlockingTitle(const Blocking& b) {
  return std::string(b.outgoing ? "outgoing" : "incoming") + " blocking of " + b.number;
}

}  // namespace

int RunBlock(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  return ChangeBlocking(
      invocation, out, err,
      [&](CMAgent& agent, ExtensionData& extension, const std::string& file, const Blocking& b,
          std::ostream& report) -> int {
        int result;
        {
          BaseLock lock(agent);
          result = agent.BlockContact(&extension, b.number, b.type, !b.outgoing);
        }
        if (result == 1) {
          report << b.number << " is already blocked; nothing to change\n";
          return kOk;
        }
        if (result != 0) {
          err << "cmcfg: could not block " << b.number << " in " << file << " (see --log-dir)\n";
          return kFindings;
        }
        const Tree after = BlockingOf(extension.addressBook, b.number, b.type, b.outgoing);
        PrintChange(BlockingTitle(b) + " (" + CallTypeName(b.type) + ") for " + extension.name,
                    b.before, after, report);
        return Verified(after,
                        BlockingOf(StoredBook(agent, extension), b.number, b.type, b.outgoing),
                        file, err);
      });
}

int RunUnblock(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  return ChangeBlocking(
      invocation, out, err,
      [&](CMAgent& agent, ExtensionData& extension, const std::string& file, const Blocking& b,
          std::ostream& report) -> int {
        if (!b.before.is_object() || !On(b.before["active"])) {
          report << b.number << " is not blocked; nothing to change\n";
          return kOk;
        }
        const unsigned long id = b.before["contact_id"].get<unsigned long>();
        const std::string section =
            extdb::ServiceSection(id, b.outgoing ? "outgoing_blocking" : "incoming_blocking");
        // As the web configuration saves it: the flag alone, under the lock.
        const cfg::Status saved = cfg::UpdateDocument(file, [&](cfg::Document& doc) {
          cfg::Section* blocking = doc.Find(section);
          return blocking != nullptr && doc.Set(*blocking, "active", "0");
        });
        if (!saved.ok()) {
          err << "cmcfg: could not unblock " << b.number << " in " << file << ": "
              << saved.ToString() << "\n";
          return kFindings;
        }
        {
          BaseLock lock(agent);
          agent.UpdateSupServices(&extension, static_cast<int>(id),
                                  b.outgoing ? UpdateTypeCodes::kUpdateOutgoingBlocking
                                             : UpdateTypeCodes::kUpdateIncomingBlocking);
        }
        const Tree after = BlockingOf(extension.addressBook, b.number, b.type, b.outgoing);
        PrintChange(BlockingTitle(b) + " for " + extension.name, b.before, after, report);
        return On(after["active"]) ? Verified(after, b.before, file, err) : kOk;
      });
}

}  // namespace cmcfg_tool
