#ifndef CMCFG_TOOLS_DOCUMENT_H_
#define CMCFG_TOOLS_DOCUMENT_H_

// The whole of what a loaded agent holds, as one document of record trees
// in a fixed order (docs/man/dump.md): "extension_table", "extensions",
// "attendants", "system_attendant", then SystemTree's members. "dump"
// prints it in full, "show" with each extension and attendant reduced to
// SummaryOf, and "diff" compares two of them.

#include <iosfwd>
#include <string>

#include "tools/model.h"

class CMAgent;

namespace cmcfg_tool {

// Receives the document's members in order. The two long arrays arrive one
// record at a time, so a receiver that writes them out never holds more
// than one record.
class DocumentSink {
 public:
  virtual ~DocumentSink() = default;
  // A top-level member other than the two arrays.
  virtual void Member(const std::string& key, Tree value) = 0;
  // The array "extensions" or "attendants" opens, takes its records in
  // order, and closes.
  virtual void BeginArray(const std::string& key) = 0;
  virtual void Record(Tree record) = 0;
  virtual void EndArray() = 0;
};

// Hands the document of `agent`, loaded over `root`, to `sink`.
void ProduceDocument(const CMAgent& agent, const std::string& root, Detail detail,
                     DocumentSink& sink);

// Writes the document as JSON, indented by two, ending in a newline,
// record by record: memory stays at one record whatever the root's size.
// Text is bytes: an invalid UTF-8 sequence becomes U+FFFD.
void WriteDocumentJson(const CMAgent& agent, const std::string& root, Detail detail,
                       std::ostream& out);

// A tree as JSON text, indented by two, ending in a newline (invalid UTF-8
// replaced as above).
std::string JsonText(const Tree& value);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_DOCUMENT_H_
