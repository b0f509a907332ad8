#include "platform/line/line_manager.h"

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "platform/base/file_system.h"

namespace {

// Section names of the three kinds of entries: "binding 1/3", "fxs 1/3",
// "fxo 1/1" (gateway/line).
const char* const kKinds[] = {"binding", "fxs", "fxo"};

std::mutex& LineDbMutex() {
  static std::mutex mu;
  return mu;
}

std::string& LineDbName() {
  static std::string name;
  return name;
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

int32_t Int(const cfg::Section& section, std::string_view key, int32_t fallback) {
  std::string value(section.Get(key));
  if (value.empty()) return fallback;
  char* end = nullptr;
  long v = std::strtol(value.c_str(), &end, 0);
  return (*end == '\0' && v >= INT32_MIN && v <= INT32_MAX) ? static_cast<int32_t>(v) : fallback;
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

void ReadEntry(const cfg::Section& s, int type, LineBase* entry) {
  switch (type) {
    case LineManagerBase::kLineDb:
      entry->extension = std::string(s.Get("extension"));
      entry->presentationId = static_cast<uint32_t>(Int(s, "presentation_id", 0));
      break;
    case LineManagerBase::kFxsLines:
      entry->symmetricRtp = Int(s, "symmetric_rtp", 0);
      entry->disconnect[0] = Int(s, "disconnect_mode", 0);
      entry->disconnect[1] = Int(s, "disconnect_min_ms", 0);
      entry->disconnect[2] = Int(s, "disconnect_max_ms", 0);
      entry->disconnect[3] = Int(s, "disconnect_delay_s", 5);
      entry->fxsExtra = Int(s, "caller_id_type", 0);
      entry->rtpProxy = Int(s, "rtp_proxy", 0);
      break;
    default:
      entry->fxoNumber = std::string(s.Get("number"));
      entry->fxoEnabled = Int(s, "enabled", 1);
      break;
  }
}

}  // namespace

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

struct LineManagerBase::Rep {
  std::string path;
  bool loaded = false;
  // The version of the file that was read.
  bool exists = false;
  cfg::FileInfo version;
  bool settled = false;

  std::vector<std::unique_ptr<LineBase>> owned;
  std::list<LineBase*> lines;
  std::unordered_map<uint64_t, LineBase*> byEndpoint;
  std::unordered_map<std::string, std::vector<LineBase*>> byExtension;
};

LineManagerBase::LineManagerBase(LineMngType type, std::string path) : rep_(new Rep), type_(type) {
  rep_->path = std::move(path);
}

LineManagerBase::~LineManagerBase() = default;

void LineManagerBase::Refresh(bool reload) {
  Rep& r = *rep_;
  if (r.loaded && !reload) return;
  // Stat before reading: a change in between is then seen at the next call.
  cfg::FileInfo now;
  bool exists = cfg::FileSystem::Default()->Stat(r.path, &now).ok();
  if (r.loaded && r.settled && exists == r.exists && (!exists || now.SameVersion(r.version)))
    return;
  r.exists = exists;
  r.version = now;
  r.settled = !exists || Settled(now);
  Read();
}

void LineManagerBase::Read() {
  Rep& r = *rep_;
  r.loaded = true;
  r.owned.clear();
  r.lines.clear();
  r.byEndpoint.clear();
  r.byExtension.clear();
  cfg::Document doc;
  cfg::LoadDocument(r.path, &doc);  // a missing or bad file has no lines
  for (const cfg::Section& section : doc.sections()) {
    uint32_t gateway = 0, line = 0;
    if (!ParseEndpoint(section.name, type_, &gateway, &line)) continue;
    auto slot = r.byEndpoint.emplace(EndpointKey(gateway, line), nullptr);
    if (!slot.second) continue;  // first one counts
    std::unique_ptr<LineBase> entry(new LineBase);
    entry->gatewayId = gateway;
    entry->lineId = line;
    entry->path_ = r.path;
    entry->type_ = type_;
    ReadEntry(section, type_, entry.get());
    slot.first->second = entry.get();
    r.lines.push_back(entry.get());
    if (type_ == kLineDb) r.byExtension[entry->extension].push_back(entry.get());
    r.owned.push_back(std::move(entry));
  }
}

const std::list<LineBase*>& LineManagerBase::GetLines(bool reload) {
  Refresh(reload);
  return rep_->lines;
}

LineBase* LineManagerBase::GetLine(uint32_t gatewayId, uint32_t lineId, bool reload) {
  Refresh(reload);
  auto it = rep_->byEndpoint.find(EndpointKey(gatewayId, lineId));
  return it == rep_->byEndpoint.end() ? nullptr : it->second;
}

const std::vector<LineBase*>& LineManagerBase::GetLinesOf(const std::string& extension,
                                                          bool reload) {
  static const std::vector<LineBase*> kNone;
  if (type_ != kLineDb) return kNone;
  Refresh(reload);
  auto it = rep_->byExtension.find(extension);
  return it == rep_->byExtension.end() ? kNone : it->second;
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
  if (readNow) GetLines(true);
}

LineManager::~LineManager() = default;

void LineManager::SetLineDB(const std::string& path) {
  std::lock_guard<std::mutex> lock(LineDbMutex());
  LineDbName() = path;
}

void LineManager::UnsetLineDB() {
  std::lock_guard<std::mutex> lock(LineDbMutex());
  LineDbName().clear();
}

std::string LineManager::GetLineDB() {
  std::lock_guard<std::mutex> lock(LineDbMutex());
  return LineDbName();
}
