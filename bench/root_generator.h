// Realistic configuration roots for the start-up benchmarks: N users with
// full profiles (SIP, personal data, services, codecs, service codes, speed
// dials, an address book with forwarding), an attendant, the system-wide
// settings and a line database binding half of the users to FXS ports.
//
// Writing 100,000 user files takes a while, so each root is generated once
// into a cache folder and reused by later runs; a version number in the
// folder name retires roots written by an older generator.
#ifndef CMCFG_BENCH_ROOT_GENERATOR_H_
#define CMCFG_BENCH_ROOT_GENERATOR_H_

#include <string>
#include <vector>

namespace bench_roots {

// Bump whenever the generated files change.
constexpr int kGeneratorVersion = 2;

// The folder that holds the cached roots: $CMCFG_BENCH_CACHE, else
// /tmp/cmcfg-bench.
std::string CacheFolder();

// The configuration root (ending in "/") of `users` users, generated into
// CacheFolder() + "/users-N-vK/" unless a complete one is already there.
// Zero users gives the system-wide files, the attendant and an empty line
// database only. Throws std::runtime_error when the root cannot be written.
std::string UserRoot(int users);

// The extension number of user `index` (0-based).
std::string UserNumber(int index);

// The user files of a root made by UserRoot(users), in index order.
std::vector<std::string> UserFiles(const std::string& root, int users);

// The text of user `index`'s file in a root of `users` users (exposed so the
// content can be inspected without writing a root).
std::string UserFileText(int index, int users);

}  // namespace bench_roots

#endif  // CMCFG_BENCH_ROOT_GENERATOR_H_
