#ifndef CMCFG_PLATFORM_LINE_LINE_MANAGER_H_
#define CMCFG_PLATFORM_LINE_LINE_MANAGER_H_

#include <cstdint>
#include <list>
#include <memory>
#include <string>

// "No gateway" / "no line".
inline constexpr uint32_t gUndefinedLine = 0xFFFFFFFFu;

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

class LineManagerBase {
 public:
  enum LineMngType { kLineDb = 0, kFxsLines = 1, kFxoLines = 2 };

  virtual ~LineManagerBase();
  // Entries of this manager's type, in file order; the file is read on
  // first use, and again when `reload` is set (which invalidates entries
  // returned before). A missing or bad file has no entries.
  const std::list<LineBase*>& GetLines(bool reload);
  // The entry of that gateway and line, or nullptr (reload as above).
  LineBase* GetLine(uint32_t gatewayId, uint32_t lineId, bool reload);
  LineMngType GetType() const { return type_; }

 protected:
  LineManagerBase(LineMngType type, std::string path);

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
