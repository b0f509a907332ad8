#include "tools/write_back_cli.h"

#include <CLI/CLI.hpp>
#include <map>

namespace cmcfg_tool {
namespace {

const char kWritingStatuses[] =
    "Exit status: 0 done; 1 no such extension, or the operation failed (why on stderr); 2 the "
    "root cannot be read; 100 and up a usage error.";

void AddRootOptions(CLI::App* verb, std::string* root, std::string* logDir) {
  verb->add_option("--root", *root,
                   "Configuration root (default: $ORBA_PATH, else /etc/orba-conf/)");
  verb->add_option("--log-dir", *logDir, "Folder for cmcfg.log (default: the current directory)");
}

// The verb's own help ends with what it does in full and its exit statuses;
// the list of verbs shows only the one-line description.
void Explain(CLI::App* verb, const std::string& details, const std::string& statuses) {
  verb->footer(details + "\n\n" + statuses);
}

// The --edited option of a verb that applies a change the web configuration
// saved: `what` names the file FILE replaces.
void AddEditedOption(CLI::App* verb, std::string* edited, const std::string& what) {
  verb->add_option("--edited", *edited,
                   "After loading, put FILE in place of " + what +
                       " (atomically, under its lock) before the call, as the web "
                       "configuration saves its change")
      ->check(CLI::ExistingFile);
}

}  // namespace

WriteBackVerbs::WriteBackVerbs(CLI::App* app) {
  forwardCmd_ = app->add_subcommand(
      "forward", "Change an extension's unconditional forward as its telephone does, in its file");
  forwardCmd_->add_option("extension", forward_.name, "Extension name")->required();
  forwardCmd_->add_option("action", forwardAction_, "on, off or toggle")
      ->required()
      ->check(CLI::IsMember({"on", "off", "toggle"}));
  forwardCmd_->add_option("number", forward_.number, "The number to forward to (on only)");
  forwardCmd_->add_flag("--replace", forward_.replace,
                        "on: replace a different number set from the phone");
  AddRootOptions(forwardCmd_, &forward_.root, &forward_.logDir);
  Explain(forwardCmd_,
          "Acts on the unconditional forward of the any-caller contact (\"*\") and stores it in "
          "the extension's file. 'on NUMBER' sets the destination dialled from the phone; a "
          "different number already set is replaced only with --replace; the same number "
          "stores nothing. 'off' removes that destination. Neither touches the forward's on/off "
          "flag nor the other destinations. 'toggle' switches the forward on or off. Prints "
          "the forward (flag, text, destinations) before and after.",
          kWritingStatuses);
  forwardCmd_->callback([this] {
    forward_.action = forwardAction_ == "on"    ? ForwardAction::kOn
                      : forwardAction_ == "off" ? ForwardAction::kOff
                                                : ForwardAction::kToggle;
    const bool on = forward_.action == ForwardAction::kOn;
    if (on && forward_.number.empty())
      throw CLI::ValidationError("number", "'forward EXT on' needs the NUMBER to forward to");
    if (!on && !forward_.number.empty())
      throw CLI::ValidationError("number", "only 'forward EXT on' takes a NUMBER");
    if (!on && forward_.replace)
      throw CLI::ValidationError("--replace", "only 'forward EXT on' takes --replace");
  });

  blockCmd_ = app->add_subcommand(
      "block", "Add a number to an extension's incoming or outgoing black list, in its file");
  blockCmd_->add_option("extension", block_.name, "Extension name")->required();
  blockCmd_->add_option("number", block_.number, "The number, pattern or SIP address to block")
      ->required();
  CLI::Option_group* direction =
      blockCmd_->add_option_group("direction", "Which black list (exactly one)");
  direction->add_flag("--incoming", incoming_, "Block calls from NUMBER");
  direction->add_flag("--outgoing", outgoing_, "Block calls to NUMBER");
  direction->require_option(1);
  blockCmd_->add_option("--call-type", callType_, "number, sip or pstn (or 0, 1, 2)")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, int>{{"number", 0}, {"sip", 1}, {"pstn", 2}}, CLI::ignore_case))
      ->default_str("number");
  AddRootOptions(blockCmd_, &block_.root, &block_.logDir);
  Explain(blockCmd_,
          "Switches on the blocking of the contact with that name and call type, creating the "
          "contact when the address book has none, and stores it in the extension's file. "
          "Prints the contact's blocking before and after. When it is already blocked, says "
          "'already blocked' and stores nothing (status 0).",
          kWritingStatuses);

  contactCmd_ = app->add_subcommand(
      "contact", "Apply address-book changes made in an extension's file to the loaded book");
  contactCmd_->add_option("extension", contact_.name, "Extension name")->required();
  contactCmd_->add_option("mode", contactMode_, "add, change or erase")
      ->required()
      ->check(CLI::IsMember({"add", "change", "erase"}));
  contactCmd_->add_option("ids", contact_.ids, "Contact identifiers, comma-separated: 3,7")
      ->required();
  AddEditedOption(contactCmd_, &contact_.edited, "the extension's file");
  AddRootOptions(contactCmd_, &contact_.root, &contact_.logDir);
  Explain(contactCmd_,
          "Does what the call manager does when told that contacts IDS changed: 'add' and "
          "'change' re-read them from the extension's file ('change' only their name and call "
          "type, not their services), 'erase' drops them from the agent's address book. The "
          "operation writes nothing. It stops at the first unknown identifier; those before it "
          "stay applied. Prints the address book (name, call type, id) before and after. The "
          "load already holds what the file says, so give the edited file with --edited to see "
          "the change arrive.",
          "Exit status: 0 every identifier applied; 1 no such extension, an unknown identifier "
          "(the book is printed all the same), an unreadable file, or --edited could not be put "
          "in place; 2 the root cannot be read; 100 and up a usage error.");

  portCmd_ = app->add_subcommand(
      "port", "Re-bind the loaded extensions after an FXS port was given to another one");
  portCmd_->add_option("gateway", port_.gatewayId, "Media gateway id")
      ->required()
      ->check(CLI::NonNegativeNumber);
  portCmd_->add_option("line", port_.lineId, "FXS line on that gateway")
      ->required()
      ->check(CLI::NonNegativeNumber);
  AddEditedOption(portCmd_, &port_.edited, "telephony/linedb");
  AddRootOptions(portCmd_, &port_.root, &port_.logDir);
  Explain(portCmd_,
          "Does what the call manager does when told that port MG{GATEWAY}<LINE> has a new "
          "extension in the line database: the extension the database names takes the port, "
          "any other holder is unbound. Only the agent's tables change. Prints every extension "
          "whose binding changed, before and after ('-': unbound). The load already holds what "
          "the line database says, so give the edited one with --edited to see the port move.",
          "Exit status: 0 an extension took the port, or it is a port of a remote gateway; 1 "
          "unknown gateway or port, the line database gives it to no loaded extension, or "
          "--edited could not be put in place; 2 the root cannot be read; 100 and up a usage "
          "error.");
}

int WriteBackVerbs::Run(std::ostream& out, std::ostream& err) {
  if (*forwardCmd_) return RunForward(forward_, out, err);
  if (*blockCmd_) {
    block_.incoming = incoming_;
    block_.callType = static_cast<CallType>(callType_);
    return RunBlock(block_, out, err);
  }
  if (*contactCmd_) {
    contact_.mode = contactMode_ == "add"      ? UpdateTypeCodes::kModeAdd
                    : contactMode_ == "change" ? UpdateTypeCodes::kModeChange
                                               : UpdateTypeCodes::kModeErase;
    return RunContact(contact_, out, err);
  }
  if (*portCmd_) return RunPort(port_, out, err);
  return -1;
}

}  // namespace cmcfg_tool
