#include "platform/line/line_manager.h"

#include <chrono>
#include <memory>
#include <cstdlib>
#include <unordered_map>
#include <vector>

#include "platform/base/document_store.h"
#include "platform/base/field_table.h"
#include "platform/base/file_system.h"
#include "platform/base/number_rules.h"
#include "platform/base/thread_mutex.h"

namespace {

// Section names of the three kinds of entries: "binding 1/3", "fxs 1/3",
// "fxo 1/1" (gateway/line).
const char* const kKinds[] = {"binding", "fxs", "fxo"};

// The line database named for the load, and its lock.
struct LineDb {
  ThreadMutex mu;
  std::string name CMCFG_GUARDED_BY(mu);
};

LineDb& TheLineDb() {
  static LineDb* db = new LineDb;  // never destroyed: used until exit
  return *db;
}

bool ParseNumber(std::string_view text, uint32_t* value) {
  if (text.empty() || text.size() > 10) return false;
  uint64_t v = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + static_cast<uint64_t>(c - '0');
  }
  if (v > 0xFFFFFFFFull) return false;
  *value = static_cast<uint32_t>(v);
  return true;
}

// Reads "KIND G/L" into the endpoint; false for another kind or a bad name.
bool ParseEndpoint(std::string_view name, int type, uint32_t* gateway, uint32_t* line) {
  std::string_view kind = kKinds[type];
  if (name.size() <= kind.size() + 1 || name.substr(0, kind.size()) != kind ||
      name[kind.size()] != ' ')
    return false;
  return ParseLineEndpoint(name.substr(kind.size() + 1), gateway, line);
}

uint64_t EndpointKey(uint32_t gateway, uint32_t line) {
  return static_cast<uint64_t>(gateway) << 32 | line;
}

// Modified this close to now, a file may be rewritten with the same size
// and timestamps (file system clocks tick coarsely): its version cannot be
// trusted yet.
const int64_t kUnsettledNanos = int64_t{2} * 1000 * 1000 * 1000;

bool Settled(const cfg::FileInfo& info) {
  int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                    std::chrono::system_clock::now().time_since_epoch())
                    .count();
  int64_t age = now - (info.mtime_sec * 1000 * 1000 * 1000 + info.mtime_nsec);
  return age >= kUnsettledNanos || age <= -kUnsettledNanos;
}

// The keys of each kind of entry, read with the field tables: a number
// that is missing or not a number keeps the default given here.
struct BindingKeys {
  std::string extension;
  cfg::CNumber presentationId;
};
const cfg::Field<BindingKeys> kBindingFields[] = {
    {"extension", &BindingKeys::extension},
    {"presentation_id", &BindingKeys::presentationId},
};

struct FxsKeys {
  cfg::CNumber symmetricRtp, disconnectMode, disconnectMin, disconnectMax;
  cfg::CNumber disconnectDelay{5};
  cfg::CNumber callerIdType, rtpProxy;
};
const cfg::Field<FxsKeys> kFxsFields[] = {
    {"symmetric_rtp", &FxsKeys::symmetricRtp},
    {"disconnect_mode", &FxsKeys::disconnectMode},
    {"disconnect_min_ms", &FxsKeys::disconnectMin},
    {"disconnect_max_ms", &FxsKeys::disconnectMax},
    {"disconnect_delay_s", &FxsKeys::disconnectDelay},
    {"caller_id_type", &FxsKeys::callerIdType},
    {"rtp_proxy", &FxsKeys::rtpProxy},
};

struct FxoKeys {
  std::string number;
  cfg::CNumber enabled{1};
};
const cfg::Field<FxoKeys> kFxoFields[] = {
    {"number", &FxoKeys::number},
    {"enabled", &FxoKeys::enabled},
};

void ReadEntry(const cfg::Section& s, int type, LineBase* entry) {
  if (type == LineManagerBase::kLineDb) {
    BindingKeys keys;
    cfg::ReadFields(s, kBindingFields, &keys);
    entry->extension = std::move(keys.extension);
    entry->presentationId = static_cast<uint32_t>(keys.presentationId.value);
  } else if (type == LineManagerBase::kFxsLines) {
    FxsKeys keys;
    cfg::ReadFields(s, kFxsFields, &keys);
    entry->symmetricRtp = keys.symmetricRtp.value;
    entry->disconnect[0] = keys.disconnectMode.value;
    entry->disconnect[1] = keys.disconnectMin.value;
    entry->disconnect[2] = keys.disconnectMax.value;
    entry->disconnect[3] = keys.disconnectDelay.value;
    entry->fxsExtra = keys.callerIdType.value;
    entry->rtpProxy = keys.rtpProxy.value;
  } else {
    FxoKeys keys;
    cfg::ReadFields(s, kFxoFields, &keys);
    entry->fxoNumber = std::move(keys.number);
    entry->fxoEnabled = keys.enabled.value;
  }
}

}  // namespace

const cfg::KeyRules* LineSectionRules(std::string_view name) {
  static const cfg::KeyRules kRules[] = {cfg::FieldRules(kBindingFields),
                                         cfg::FieldRules(kFxsFields), cfg::FieldRules(kFxoFields)};
  uint32_t gateway = 0, line = 0;
  int kind = 0;
  return ParseLineSection(name, &kind, &gateway, &line) ? &kRules[kind] : nullptr;
}

bool ParseLineSection(std::string_view name, int* kind, uint32_t* gateway, uint32_t* line) {
  for (int type = 0; type < 3; ++type)
    if (ParseEndpoint(name, type, gateway, line)) {
      *kind = type;
      return true;
    }
  return false;
}

const char* LineSectionKind(int kind) { return kind >= 0 && kind < 3 ? kKinds[kind] : ""; }

bool ParseLineEndpoint(std::string_view endpoint, uint32_t* gateway, uint32_t* line) {
  const size_t slash = endpoint.find('/');
  uint32_t g = 0, l = 0;
  if (slash == std::string_view::npos || !ParseNumber(endpoint.substr(0, slash), &g) ||
      !ParseNumber(endpoint.substr(slash + 1), &l))
    return false;
  *gateway = g;
  *line = l;
  return true;
}

namespace {

// The entries of one type of one version of the line database, built once
// and shared, read-only, by every manager that reads that version: a
// manager opened for one call then costs a stat and the look-ups it makes,
// not a read of the whole file.
struct LineIndex {
  std::string path;
  int type = 0;
  bool exists = false;
  cfg::FileInfo version;
  bool settled = false;  // false: read again before trusting the version

  std::vector<LineBase> entries;  // file order; the first of each endpoint
  std::unordered_map<uint64_t, uint32_t> byEndpoint;
  std::unordered_map<std::string, std::vector<uint32_t>> byExtension;
};

std::shared_ptr<const LineIndex> BuildIndex(const std::string& path, int type, bool exists,
                                            const cfg::FileInfo& version) {
  auto index = std::make_shared<LineIndex>();
  index->path = path;
  index->type = type;
  index->exists = exists;
  index->version = version;
  index->settled = !exists || Settled(version);
  cfg::Document doc;
  cfg::LoadDocument(path, &doc);  // a missing or bad file has no lines
  index->entries.reserve(doc.size());
  for (const cfg::Section& section : doc.sections()) {
    uint32_t gateway = 0, line = 0;
    if (!ParseEndpoint(section.name, type, &gateway, &line)) continue;
    const uint32_t at = static_cast<uint32_t>(index->entries.size());
    if (!index->byEndpoint.emplace(EndpointKey(gateway, line), at).second) continue;  // first counts
    LineBase& entry = index->entries.emplace_back();
    entry.gatewayId = gateway;
    entry.lineId = line;
    ReadEntry(section, type, &entry);
    if (type == LineManagerBase::kLineDb) index->byExtension[entry.extension].push_back(at);
  }
  return index;
}

// The indexes last built, one per file and type: the newest version of
// each of a few line databases (a process uses one; tests use many).
class IndexCache {
 public:
  static IndexCache& Get() {
    static IndexCache* cache = new IndexCache;  // never destroyed: used until exit
    return *cache;
  }

  // The index of the file as it is now (`exists`, `version`): the cached
  // one when it was read from this settled version, else a new one, read
  // now and cached in its place.
  std::shared_ptr<const LineIndex> Current(const std::string& path, int type, bool exists,
                                           const cfg::FileInfo& version) {
    {
      MutexLock lock(&mu_);
      for (const auto& index : indexes_)
        if (index->type == type && index->path == path && Fresh(*index, exists, version))
          return index;
    }
    // Read outside the lock: one slow reader must not hold up the others.
    std::shared_ptr<const LineIndex> fresh = BuildIndex(path, type, exists, version);
    MutexLock lock(&mu_);
    for (auto& index : indexes_) {
      if (index->type == type && index->path == path) {
        index = fresh;
        return fresh;
      }
    }
    if (indexes_.size() == kKept) indexes_.erase(indexes_.begin());
    indexes_.push_back(fresh);
    return fresh;
  }

  static bool Fresh(const LineIndex& index, bool exists, const cfg::FileInfo& version) {
    return index.settled && exists == index.exists && (!exists || version.SameVersion(index.version));
  }

 private:
  static constexpr size_t kKept = 8;
  ThreadMutex mu_;
  std::vector<std::shared_ptr<const LineIndex>> indexes_ CMCFG_GUARDED_BY(mu_);  // oldest first
};

}  // namespace

// A manager hands out its own copies of the shared entries, made on first
// use, so a caller may change one (LineBase::Load does) without touching
// the index other managers read.
struct LineManagerBase::Rep {
  std::string path;
  std::shared_ptr<const LineIndex> index;  // null until first use

  std::unordered_map<uint32_t, std::unique_ptr<LineBase>> copies;  // by entry
  bool listed = false;  // `lines` holds every entry
  std::list<LineBase*> lines;
  std::unordered_map<std::string, std::vector<LineBase*>> byExtension;

  LineBase* Copy(uint32_t at, int type) {
    std::unique_ptr<LineBase>& slot = copies[at];
    if (!slot) {
      slot.reset(new LineBase(index->entries[at]));
      slot->path_ = path;
      slot->type_ = type;
    }
    return slot.get();
  }
};

LineManagerBase::LineManagerBase(LineMngType type, std::string path) : rep_(new Rep), type_(type) {
  rep_->path = std::move(path);
}

LineManagerBase::~LineManagerBase() = default;

void LineManagerBase::Refresh(bool reload) {
  Rep& r = *rep_;
  if (r.index != nullptr && !reload) return;
  // Stat before reading: a change in between is then seen at the next call.
  cfg::FileInfo now;
  bool exists = cfg::FileSystem::Default()->Stat(r.path, &now).ok();
  if (r.index != nullptr && IndexCache::Fresh(*r.index, exists, now)) return;
  std::shared_ptr<const LineIndex> index = IndexCache::Get().Current(r.path, type_, exists, now);
  if (index == r.index) return;
  r.index = std::move(index);
  r.copies.clear();
  r.listed = false;
  r.lines.clear();
  r.byExtension.clear();
}

const std::list<LineBase*>& LineManagerBase::GetLines(bool reload) {
  Refresh(reload);
  Rep& r = *rep_;
  if (!r.listed) {
    r.lines.clear();
    for (uint32_t at = 0; at < r.index->entries.size(); ++at) r.lines.push_back(r.Copy(at, type_));
    r.listed = true;
  }
  return r.lines;
}

LineBase* LineManagerBase::GetLine(uint32_t gatewayId, uint32_t lineId, bool reload) {
  Refresh(reload);
  Rep& r = *rep_;
  auto it = r.index->byEndpoint.find(EndpointKey(gatewayId, lineId));
  return it == r.index->byEndpoint.end() ? nullptr : r.Copy(it->second, type_);
}

const std::vector<LineBase*>& LineManagerBase::GetLinesOf(const std::string& extension,
                                                          bool reload) {
  static const std::vector<LineBase*> kNone;
  if (type_ != kLineDb) return kNone;
  Refresh(reload);
  Rep& r = *rep_;
  auto it = r.index->byExtension.find(extension);
  if (it == r.index->byExtension.end()) return kNone;
  std::vector<LineBase*>& copies = r.byExtension[extension];
  if (copies.empty())
    for (uint32_t at : it->second) copies.push_back(r.Copy(at, type_));
  return copies;
}

bool LineBase::Load() {
  cfg::Document doc;
  if (!cfg::LoadDocument(path_, &doc).ok()) return false;
  for (const cfg::Section& section : doc.sections()) {
    uint32_t gateway = 0, line = 0;
    if (ParseEndpoint(section.name, type_, &gateway, &line) && gateway == gatewayId &&
        line == lineId) {
      ReadEntry(section, type_, this);
      return true;
    }
  }
  return false;
}

LineManager::LineManager(LineMngType type, const std::string& path, bool readNow)
    : LineManagerBase(type, path) {
  if (readNow) Refresh(true);
}

LineManager::~LineManager() = default;

void LineManager::SetLineDB(const std::string& path) {
  LineDb& db = TheLineDb();
  MutexLock lock(&db.mu);
  db.name = path;
}

void LineManager::UnsetLineDB() {
  LineDb& db = TheLineDb();
  MutexLock lock(&db.mu);
  db.name.clear();
}

std::string LineManager::GetLineDB() {
  LineDb& db = TheLineDb();
  MutexLock lock(&db.mu);
  return db.name;
}
