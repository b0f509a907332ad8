#include "tools/diff.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <ostream>

#include "cmcfg/cm_agent.h"
#include "tools/document.h"
#include "tools/file_compare.h"
#include "tools/held_dump.h"
#include "tools/session.h"
#include "tools/shadow_root.h"

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

  // The identity values of a list in order, and the position of each, or
  // false when an element has none or two share one (then the list is
  // compared as a whole). Looked up by value: tables hold 100,000 records.
  static bool Keys(const ordered_json& list, const char* field, std::vector<std::string>* keys,
                   std::unordered_map<std::string, size_t>* positions) {
    for (const ordered_json& item : list) {
      if (!item.is_object() || !item.contains(field)) return false;
      std::string key = ScalarText(item[field]);
      if (!positions->emplace(key, keys->size()).second) return false;
      keys->push_back(std::move(key));
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
    std::unordered_map<std::string, size_t> inA, inB;
    if (identity != nullptr && Keys(a, identity->field, &keysA, &inA) &&
        Keys(b, identity->field, &keysB, &inB)) {
      const std::string label = identity->label;
      for (size_t i = 0; i < keysA.size(); ++i) {
        auto at = inB.find(keysA[i]);
        if (at == inB.end())
          lines_->push_back(Join(base, label + " " + keysA[i]) + ": removed");
        else if (a[i] != b[at->second])
          Compare(Join(base, label + " " + keysA[i]), "", a[i], b[at->second]);
      }
      for (size_t i = 0; i < keysB.size(); ++i)
        if (inA.count(keysB[i]) == 0)
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

std::vector<std::string> DiffDumps(const ordered_json& a, const ordered_json& b) {
  std::vector<std::string> lines;
  Differ(&lines).Compare("", "", a, b);
  return lines;
}

namespace {

// Loads `root` and hands its document to `held`.
void Hold(const std::string& root, const std::string& logDir, std::ostream& err, HeldDump* held) {
  AgentSession session(root, logDir, Access::kInspect, &err);
  ProduceDocument(session.agent(), root, Detail::kFull, *held);
}

ordered_json Parsed(const std::string& array, const std::string& text) {
  return {{array, ordered_json::array({ordered_json::parse(text)})}};
}

// The lines of one array, as DiffDumps gives them for the whole documents.
void DiffRecords(const std::string& array, const HeldDump& a, const HeldDump& b,
                 std::vector<std::string>* lines) {
  const std::vector<HeldDump::Stored>& recordsA = a.records(array);
  const std::vector<HeldDump::Stored>& recordsB = b.records(array);
  std::unordered_map<std::string, size_t> byNameA, byNameB;
  bool unique = true;
  for (size_t i = 0; i < recordsA.size(); ++i)
    unique = byNameA.emplace(recordsA[i].name, i).second && unique;
  for (size_t i = 0; i < recordsB.size(); ++i)
    unique = byNameB.emplace(recordsB[i].name, i).second && unique;
  if (!unique) {  // compared as whole lists, as DiffDumps does
    ordered_json listA = {{array, ordered_json::array()}}, listB = listA;
    for (const auto& record : recordsA) listA[array].push_back(ordered_json::parse(a.Text(record)));
    for (const auto& record : recordsB) listB[array].push_back(ordered_json::parse(b.Text(record)));
    for (std::string& line : DiffDumps(listA, listB)) lines->push_back(std::move(line));
    return;
  }
  // Removed and changed records in A's order, then the added ones: the
  // lines name them as DiffDumps does.
  const ordered_json emptyList = {{array, ordered_json::array()}};
  const auto append = [&](const ordered_json& from, const ordered_json& to) {
    for (std::string& line : DiffDumps(from, to)) lines->push_back(std::move(line));
  };
  for (const auto& record : recordsA) {
    auto other = byNameB.find(record.name);
    if (other == byNameB.end())
      append(Parsed(array, a.Text(record)), emptyList);
    else if (!a.Same(record, b, recordsB[other->second]))
      append(Parsed(array, a.Text(record)), Parsed(array, b.Text(recordsB[other->second])));
  }
  for (const auto& record : recordsB)
    if (byNameA.count(record.name) == 0) append(emptyList, Parsed(array, b.Text(record)));
}

// The member `key` alone, or the document without the keys of `drop`.
ordered_json Only(const ordered_json& doc, const std::string& key) {
  ordered_json one = ordered_json::object();
  if (doc.contains(key)) one[key] = doc[key];
  return one;
}

ordered_json Without(ordered_json doc, std::initializer_list<const char*> drop) {
  for (const char* key : drop) doc.erase(key);
  return doc;
}

}  // namespace

int RunDiff(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::string roots[2] = {ResolveRoot(invocation.operands.at(0)),
                                ResolveRoot(invocation.operands.at(1))};
  if (!RootIsUsable(roots[0], err) || !RootIsUsable(roots[1], err)) return kUsage;
  // The files first: the records are built only where they differ.
  const FileComparison files = CompareFiles(roots[0], roots[1]);
  if (files.same) return kOk;
  HeldDump held[2];
  for (int i = 0; i < 2; ++i) {
    // One agent at a time: each load points ORBA_PATH at its own root.
    std::unique_ptr<ShadowRoot> shadow;
    if (files.onlyExtensions) shadow = std::make_unique<ShadowRoot>(roots[i], files.extensions);
    const bool shadowed = shadow != nullptr && !shadow->path().empty();
    Hold(shadowed ? shadow->path() : roots[i], invocation.logDir, err, &held[i]);
  }
  // In the dump's order: the table, its records, the attendants, the rest.
  std::vector<std::string> lines =
      DiffDumps(Only(held[0].rest(), "extension_table"), Only(held[1].rest(), "extension_table"));
  DiffRecords("extensions", held[0], held[1], &lines);
  DiffRecords("attendants", held[0], held[1], &lines);
  const auto drop = {"extension_table", "extensions", "attendants"};
  for (std::string& line : DiffDumps(Without(held[0].rest(), drop), Without(held[1].rest(), drop)))
    lines.push_back(std::move(line));
  for (const std::string& line : lines) out << line << "\n";
  return lines.empty() ? kOk : kFindings;
}

}  // namespace cmcfg_tool
