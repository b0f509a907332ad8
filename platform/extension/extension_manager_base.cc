#include "platform/extension/extension_manager_base.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/base/file_system.h"
#include "platform/extension/extension_rep.h"

namespace extdb {

namespace {

const char kFileSuffix[] = ".cfg";
const size_t kSuffixLength = sizeof(kFileSuffix) - 1;

}  // namespace

const char* KindFolder(ExtType type) {
  switch (type) {
    case kExtAttendant: return "attendant";
    case kExtUser: return "user";
    case kExtPickup: return "pickup";
    case kExtCallPark: return "callpark";
    case kExtPaging: return "paging";
  }
  return nullptr;
}

bool IsValidName(const std::string& name) {
  // "." would name the kind's own folder ("..cfg" lists as ".").
  if (name.empty() || name == "." || name.find('/') != std::string::npos ||
      name.find("..") != std::string::npos)
    return false;
  for (unsigned char c : name)
    if (c < 0x20 || c == 0x7F) return false;
  return true;
}

bool NaturalLess(const std::string& a, const std::string& b) {
  auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      size_t si = i, sj = j;
      while (si < a.size() && a[si] == '0') ++si;
      while (sj < b.size() && b[sj] == '0') ++sj;
      size_t ei = si, ej = sj;
      while (ei < a.size() && isDigit(a[ei])) ++ei;
      while (ej < b.size() && isDigit(b[ej])) ++ej;
      if (ei - si != ej - sj) return ei - si < ej - sj;
      int c = a.compare(si, ei - si, b, sj, ej - sj);
      if (c != 0) return c < 0;
      i = ei;
      j = ej;
      continue;
    }
    if (a[i] != b[j]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
    ++i;
    ++j;
  }
  if (i < a.size() || j < b.size()) return j < b.size();  // the shorter rest first
  return a < b;  // "01" and "1": still a total order
}

}  // namespace extdb

ExtensionManagerBase::ExtensionManagerBase(std::string path) : path_(std::move(path)) {
  if (!path_.empty() && path_.back() != '/') path_ += '/';
}

ExtensionManagerBase::~ExtensionManagerBase() = default;

bool ExtensionManagerBase::GetAllExtensionsNames(ExtType type, std::list<std::string>& names) {
  names.clear();
  const char* folder = extdb::KindFolder(type);
  if (folder == nullptr) return false;
  const std::string dir = path_ + folder + "/";
  // The listing tells regular files from the rest: no stat per file.
  std::vector<cfg::DirEntry> entries;
  if (!cfg::FileSystem::Default()->ListDirEntries(dir, &entries).ok()) return false;
  std::vector<std::string> found;
  for (const cfg::DirEntry& entry : entries) {
    const std::string& file = entry.name;
    if (file.size() <= extdb::kSuffixLength ||
        file.compare(file.size() - extdb::kSuffixLength, extdb::kSuffixLength, extdb::kFileSuffix) != 0)
      continue;
    std::string name = file.substr(0, file.size() - extdb::kSuffixLength);
    // Temporary and lock files of a save in progress never end in ".cfg";
    // folders and other odd entries are no extensions either.
    if (!extdb::IsValidName(name) || entry.kind != cfg::FileInfo::kRegular) continue;
    found.push_back(std::move(name));
  }
  std::sort(found.begin(), found.end(), extdb::NaturalLess);
  names.assign(found.begin(), found.end());
  return true;
}

