#ifndef CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_
#define CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_

#include <string>
#include <string_view>

namespace cfg {

// The configuration root: "ORBA_PATH", or "/etc/orba-conf/" when unset.
// Read afresh on every call; never cached. Paths are made by plain
// concatenation, so a root without its trailing "/" runs into the names.
std::string ConfigRoot();

// ConfigRoot() + "telephony/" + name.
std::string TelephonyPath(const std::string& name);

// True when `path` (a file that may not exist yet) lies inside the
// configuration root once symbolic links and ".." are resolved. Writes are
// confined to the root: a path named in a settings file must not let the
// agent change files elsewhere. False when the root does not exist.
bool IsInsideRoot(const std::string& path);

// True when `path` names something in the configuration root as written:
// it is ConfigRoot() followed by at least one more character, after a "/"
// (the root's own or the next one). Nothing is resolved; the store holds
// such paths to the containment rule of OpenedInsideRoot.
bool IsUnderRootName(const std::string& path);

// True when the file open on `fd`, opened by the name `path`, lies inside
// the configuration root with every symbolic link (of the file and of the
// folders on its way) and ".." resolved: what was opened, not what the name
// resolves to a moment later. False when the root or the file cannot be
// resolved. Costs one readlink in the usual case (a root given without
// links or dots); a root reached through a link is resolved on each call.
bool OpenedInsideRoot(int fd, const std::string& path);

// While at least one RootScope lives (on any thread), files under the
// configuration root are opened from one descriptor of the root, opened
// when first needed, with openat2 and RESOLVE_BENEATH: the kernel refuses
// every link and ".." that would lead out, so a read needs no readlink of
// what it opened. For a burst of reads such as the agent's start-up; the
// root is taken as it is then (a root moved meanwhile is not seen until the
// last scope ends). Thread-safe.
class RootScope {
 public:
  RootScope();
  // The last scope to end closes the descriptor.
  ~RootScope();
  RootScope(const RootScope&) = delete;
  RootScope& operator=(const RootScope&) = delete;
};

// Opens `path` for reading with open(2) `flags` from the root's descriptor
// (see RootScope). *handled false, and -1 returned, when that cannot be
// done: no scope, a path not under the root by name (IsUnderRootName), a
// root other than the scope's, a kernel without openat2, or a path the
// kernel will not resolve beneath the root (a link out of it, or an
// absolute link, which may still point inside). The caller then opens the
// file the usual way and checks it with OpenedInsideRoot. Otherwise
// *handled is true and the result is the descriptor (the caller's to
// close), or -1 with errno set as by open(2).
int OpenUnderRoot(const std::string& path, int flags, bool* handled);

// True when `name` can stand for exactly one file in a folder of the root:
// not empty, not "." or "..", no "/" and no control character (NUL
// included). A name that passes cannot leave the folder it is joined to
// (a symbolic link can, which OpenedInsideRoot catches on reading).
bool IsPlainFileName(std::string_view name);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_
