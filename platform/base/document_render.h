#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_RENDER_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_RENDER_H_

#include <string>

#include "platform/base/document.h"

namespace cfg {

// The text of `doc` written over the text it was parsed from (doc.source()),
// so that a save changes only the lines of what changed, the way an editor
// would:
// - a changed value is rewritten in its own line, keeping the indentation,
//   the key and the spacing around the separator;
// - an added entry goes after the entry before it in the section (an added
//   one at the end of its section), in the style of the section's entries;
// - an added section goes where Document::AddBeside put it, after the
//   section before it;
// - a removed entry or section takes only its own lines.
// Comments, blank lines, verbatim lines, the order of sections and keys and
// the line endings (LF or CRLF, taken from the first line) stay byte for
// byte. The result always parses back equal to `doc`: when an edit cannot
// be placed so (sections reordered, entries copied from another document),
// the whole document is serialized instead (Document::Serialize).
std::string RenderEdited(const Document& doc, const Syntax& syntax = Syntax());

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_RENDER_H_
