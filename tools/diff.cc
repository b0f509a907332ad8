#include "tools/diff.h"

#include <algorithm>
#include <map>
#include <ostream>

#include "tools/dump.h"
#include "tools/session.h"

namespace cmcfg_tool {
namespace {

using nlohmann::ordered_json;

// How the elements of a list are told apart: by the value of `field`,
// named "LABEL VALUE" in a path.
struct Identity {
  const char* field;
  const char* label;
};

const Identity* IdentityOf(const std::string& listName) {
  static const std::map<std::string, Identity> kIdentities = {
      {"extensions", {"name", "extension"}},  {"attendants", {"name", "attendant"}},
      {"tones", {"name", "tone"}},            {"users", {"e164", "user"}},
      {"auto_login", {"address", "auto-login phone"}},
      {"address_book", {"name", "contact"}},  {"functional_table", {"keys", "keys"}},
      {"speed_dial", {"code", "speed dial"}}, {"shared_extensions", {"extension", "shared"}}};
  auto it = kIdentities.find(listName);
  return it == kIdentities.end() ? nullptr : &it->second;
}

std::string Words(const std::string& key) {
  std::string text = key;
  std::replace(text.begin(), text.end(), '_', ' ');
  return text;
}

std::string ScalarText(const ordered_json& value) {
  if (value.is_null()) return "none";
  if (value.is_string()) {
    const std::string& text = value.get_ref<const std::string&>();
    return text.empty() ? "\"\"" : text;
  }
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

// A list in one line: each element as its text, name or value.
std::string ListText(const ordered_json& list) {
  if (list.empty()) return "none";
  std::string text;
  for (const ordered_json& item : list) {
    std::string one;
    if (item.is_object() && item.contains("text"))
      one = ScalarText(item["text"]);
    else if (item.is_object() && item.contains("name"))
      one = ScalarText(item["name"]);
    else if (item.is_structured())
      one = item.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    else
      one = ScalarText(item);
    text += (text.empty() ? "" : ", ") + one;
  }
  return text;
}

std::string Join(const std::string& path, const std::string& word) {
  return path.empty() ? word : path + ": " + word;
}

class Differ {
 public:
  explicit Differ(std::vector<std::string>* lines) : lines_(lines) {}

  // Compares the values found under `key` ("" for a list element) below
  // `parent`.
  void Compare(const std::string& parent, const std::string& key, const ordered_json& a,
               const ordered_json& b) {
    if (a == b) return;
    const std::string path = key.empty() ? parent : Join(parent, Words(key));
    if (a.is_object() && b.is_object()) return CompareObjects(path, a, b);
    if (a.is_array() && b.is_array()) return CompareLists(parent, path, key, a, b);
    Change(path, ScalarText(a), ScalarText(b));
  }

 private:
  void Change(const std::string& path, const std::string& from, const std::string& to) {
    lines_->push_back(path + ": " + from + " -> " + to);
  }

  void CompareObjects(const std::string& path, const ordered_json& a, const ordered_json& b) {
    for (auto it = a.begin(); it != a.end(); ++it) {
      const std::string next = Join(path, Words(it.key()));
      if (!b.contains(it.key()))
        lines_->push_back(next + ": removed");
      else
        Compare(path, it.key(), it.value(), b[it.key()]);
    }
    for (auto it = b.begin(); it != b.end(); ++it)
      if (!a.contains(it.key())) lines_->push_back(Join(path, Words(it.key())) + ": added");
  }

  // The identity values of a list, or false when an element has none or two
  // share one (then the list is compared as a whole).
  static bool Keys(const ordered_json& list, const char* field, std::vector<std::string>* keys) {
    for (const ordered_json& item : list) {
      if (!item.is_object() || !item.contains(field)) return false;
      const std::string key = ScalarText(item[field]);
      if (std::find(keys->begin(), keys->end(), key) != keys->end()) return false;
      keys->push_back(key);
    }
    return true;
  }

  void CompareLists(const std::string& parent, const std::string& path, const std::string& key,
                    const ordered_json& a, const ordered_json& b) {
    // Named elements replace the list's own name: "extension 105", not
    // "extensions: extension 105".
    const std::string& base = parent;
    const Identity* identity = IdentityOf(key);
    std::vector<std::string> keysA, keysB;
    if (identity != nullptr && Keys(a, identity->field, &keysA) &&
        Keys(b, identity->field, &keysB)) {
      const std::string label = identity->label;
      for (size_t i = 0; i < keysA.size(); ++i) {
        const std::string name = Join(base, label + " " + keysA[i]);
        auto at = std::find(keysB.begin(), keysB.end(), keysA[i]);
        if (at == keysB.end())
          lines_->push_back(name + ": removed");
        else
          Compare(name, "", a[i], b[static_cast<size_t>(at - keysB.begin())]);
      }
      for (size_t i = 0; i < keysB.size(); ++i)
        if (std::find(keysA.begin(), keysA.end(), keysB[i]) == keysA.end())
          lines_->push_back(Join(base, label + " " + keysB[i]) + ": added");
      return;
    }
    // Lists of records of the same length: element by element, so that one
    // changed codec rate reads as such; anything else as the whole list.
    const bool records = !a.empty() && a.size() == b.size() &&
                         std::all_of(a.begin(), a.end(),
                                     [](const ordered_json& v) { return v.is_object(); }) &&
                         !a.front().contains("text");
    if (records) {
      for (size_t i = 0; i < a.size(); ++i)
        Compare(Join(path, "#" + std::to_string(i + 1)), "", a[i], b[i]);
      return;
    }
    Change(path, ListText(a), ListText(b));
  }

  std::vector<std::string>* lines_;
};

}  // namespace

namespace {

// Paths under the root are compared relative to it.
void RelativeToRoot(ordered_json* value, const std::string& root) {
  if (value->is_structured()) {
    for (ordered_json& item : *value) RelativeToRoot(&item, root);
  } else if (value->is_string() && !root.empty()) {
    const std::string& text = value->get_ref<const std::string&>();
    if (text.compare(0, root.size(), root) == 0) *value = "ROOT/" + text.substr(root.size());
  }
}

}  // namespace

void StabiliseDump(ordered_json* dump, const std::string& root) {
  RelativeToRoot(dump, root);
  if (!dump->contains("extensions")) return;
  for (ordered_json& e : (*dump)["extensions"]) {
    if (!e.contains("sip") || !e["sip"].contains("user") || !e["sip"]["user"].is_string()) continue;
    std::string user = e["sip"]["user"].get<std::string>();
    user.erase(std::remove_if(user.begin(), user.end(),
                              [](char c) { return c >= '0' && c <= '9'; }),
               user.end());
    e["sip"]["user"] = user;
  }
}

std::vector<std::string> DiffDumps(const ordered_json& a, const ordered_json& b) {
  std::vector<std::string> lines;
  Differ(&lines).Compare("", "", a, b);
  return lines;
}

int RunDiff(const DiffOptions& options, std::ostream& out, std::ostream& err) {
  const std::string rootA = ResolveRoot(options.rootA);
  const std::string rootB = ResolveRoot(options.rootB);
  if (!RootIsUsable(rootA, err) || !RootIsUsable(rootB, err)) return 2;
  ordered_json dumps[2];
  const std::string roots[2] = {rootA, rootB};
  // One log for both loads, and out of both roots when run inside either.
  const std::string logDir = InspectionLogDir(rootA, InspectionLogDir(rootB, options.logDir));
  for (int i = 0; i < 2; ++i) {
    // One agent at a time: each load points ORBA_PATH at its own root.
    AgentSession session(roots[i], logDir, Access::kInspect, &err);
    dumps[i] = DumpJson(session.agent());
    StabiliseDump(&dumps[i], roots[i]);
  }
  const std::vector<std::string> lines = DiffDumps(dumps[0], dumps[1]);
  for (const std::string& line : lines) out << line << "\n";
  return lines.empty() ? 0 : 1;
}

}  // namespace cmcfg_tool
