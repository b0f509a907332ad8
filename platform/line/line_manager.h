#ifndef CMCFG_PLATFORM_LINE_LINE_MANAGER_H_
#define CMCFG_PLATFORM_LINE_LINE_MANAGER_H_

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/key_rules.h"

// "No gateway" / "no line".
inline constexpr uint32_t gUndefinedLine = 0xFFFFFFFFu;

// Reads an endpoint written "G/L" (two decimal numbers below 2^32, digits
// only) into gateway and line; false, and neither set, for anything else.
// The line database names its sections "KIND G/L".
bool ParseLineEndpoint(std::string_view endpoint, uint32_t* gateway, uint32_t* line);

// Reads a section name of the line database: its kind's keyword
// ("binding", "fxs" or "fxo": *kind, a LineManagerBase::LineMngType)
// and its endpoint "G/L". False for a name the line database never reads.
bool ParseLineSection(std::string_view name, int* kind, uint32_t* gateway, uint32_t* line);
// The keyword of a kind of section ("binding", "fxs", "fxo").
const char* LineSectionKind(int kind);

// The keys the line database reads from a section named `name` ("binding
// G/L", "fxs G/L", "fxo G/L") and which values it takes, for checkers;
// nullptr for a section it never reads. Static and shared; thread-safe.
const cfg::KeyRules* LineSectionRules(std::string_view name);

// One entry of the line database. Which fields are filled depends on the
// manager type that read it: the binding (type 0) fills extension and
// presentationId; an FXS line (type 1) the FXS fields; an FXO line (type 2)
// the FXO fields. gatewayId and lineId are always filled.
class LineBase {
 public:
  virtual ~LineBase() = default;
  // Reads the entry's details again from the line database; false when the
  // entry is no longer there.
  bool Load();

  uint32_t gatewayId = 0xFFFFFFFFu;
  uint32_t lineId = 0xFFFFFFFFu;
  // binding
  std::string extension;
  uint32_t presentationId = 0;
  // FXS line
  int32_t symmetricRtp = 0;
  int32_t disconnect[4] = {0, 0, 0, 5};  // disconnect supervision
  int32_t fxsExtra = 0;
  int32_t rtpProxy = 0;
  // FXO line
  std::string fxoNumber;
  int32_t fxoEnabled = 0;

 private:
  friend class LineManagerBase;
  std::string path_;
  int type_ = 0;
};

// The entries of one type of the line database, owned by the manager and
// indexed by endpoint and (type 0) by extension. Not thread-safe.
//
// The file is read on first use. A call with `reload` set asks for the file
// as it is now, but costs a stat only: the manager remembers the version it
// read (device, inode, size, modification and change times with
// nanoseconds) and reads again only when that changed, or when the file
// appeared or disappeared. So a loop that reloads once per extension costs
// one read of the file in all, and a change is still seen by the next call.
// A file modified less than 2 s before it was read is read again at the
// next reload as well, since a same-size rewrite within the file system's
// timestamp granularity could leave its version unchanged.
//
// Managers share what they read: the entries of one version of a file are
// read once for the whole process and kept (the newest version of each of
// a few files), so a manager opened for one call costs a stat and its
// look-ups, whatever the size of the file. Each manager hands out its own
// copies of the entries it is asked for, so changing one (LineBase::Load)
// touches no other manager's.
//
// Entries, and the lists and vectors returned, stay valid until a call
// actually re-reads the file or finds a newer version of it (or the
// manager is destroyed); a reload that finds the file unchanged keeps them.
class LineManagerBase {
 public:
  enum LineMngType { kLineDb = 0, kFxsLines = 1, kFxoLines = 2 };

  virtual ~LineManagerBase();
  // Entries of this manager's type, in file order (the first of two for
  // one endpoint). A missing or bad file has no entries.
  const std::list<LineBase*>& GetLines(bool reload);
  // The entry of that gateway and line, or nullptr. O(1).
  LineBase* GetLine(uint32_t gatewayId, uint32_t lineId, bool reload);
  // The bindings of that extension in file order (an extension may sit on
  // a local and a remote port). Empty for an unknown name, and always for
  // managers of another type than kLineDb, which do not read the file for
  // it. O(1) apart from the reload's stat.
  const std::vector<LineBase*>& GetLinesOf(const std::string& extension, bool reload);
  LineMngType GetType() const { return type_; }

 protected:
  LineManagerBase(LineMngType type, std::string path);
  // Takes the file's entries on first use, and on `reload` when it changed.
  void Refresh(bool reload);

 private:
  struct Rep;
  std::unique_ptr<Rep> rep_;
  LineMngType type_;
};

// The line database "linedb" opened as one of three kinds of manager.
class LineManager : public LineManagerBase {
 public:
  // readNow: read the file in the constructor rather than on first use.
  LineManager(LineMngType type, const std::string& path, bool readNow);
  ~LineManager() override;

  // Names the line database used by code that opens one without a path,
  // for the duration of a load.
  static void SetLineDB(const std::string& path);
  static void UnsetLineDB();
  static std::string GetLineDB();  // "" when unset
};

#endif  // CMCFG_PLATFORM_LINE_LINE_MANAGER_H_
