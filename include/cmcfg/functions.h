#ifndef CMCFG_FUNCTIONS_H_
#define CMCFG_FUNCTIONS_H_

#include <list>
#include <string>

#include "cmcfg/codec_info.h"
#include "cmcfg/export.h"

// Network interface names. GetWanIfName reads "/proc/orba/wan-if",
// trimmed of invisible characters at both ends: -1 when it cannot be
// opened (the name is then left as it was), else 0. The LAN interface is
// "eth0", the PPP one "ppp0". These free functions keep no state and may
// be called from any thread.
CMCFG_EXPORT int GetWanIfName(std::string& name);
CMCFG_EXPORT void GetLanIfName(std::string& name);
CMCFG_EXPORT void GetPPPIfName(std::string& name);

// Normalises `path` in place (backslashes to "/", one "/" at a time) and
// tells whether its folder (directoryOnly: the part before the last "/")
// or the path itself exists as a folder.
CMCFG_EXPORT bool CorrectPath(std::string& path, bool directoryOnly);
// Normalises `path` in place and tells whether it is an existing file.
CMCFG_EXPORT bool FileExist(std::string& path);

// The two log flags of the general settings; either pointer may be null.
// Both stay as they were when the settings cannot be read.
CMCFG_EXPORT void GetLogLevel(bool* logEnabled, bool* logDetails);
// The number of FXO ports of the general settings; 2 when they cannot be read.
CMCFG_EXPORT int GetNumberOfFXO();
// prefix followed by number as an unsigned 32-bit decimal ("line7").
CMCFG_EXPORT std::string TokenMaker(const char* prefix, int number);

// Turns codec names into codec entries of `codecs`, in order. Unknown names
// are dropped, "G729a" is listed under the name "G729" (keeping its own DSP
// codec), "G723" is dropped unless allowG723. Without append the list is
// emptied first; mark sets the flag byte of every entry added.
CMCFG_EXPORT void AddLineCodecsToList(const std::list<std::string>& names, std::list<CodecInfo>& codecs,
                                      bool allowG723, bool append, bool mark);
// The same for one comma-separated string of names.
CMCFG_EXPORT void AddLineCodecsToList(const std::string& names, std::list<CodecInfo>& codecs,
                                      bool allowG723, bool append, bool mark);

#endif  // CMCFG_FUNCTIONS_H_
