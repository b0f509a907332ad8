// What the root generator's files are made of: a deterministic source of
// variety and a writer of the common text format.
#ifndef CMCFG_BENCH_GENERATED_TEXT_H_
#define CMCFG_BENCH_GENERATED_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench_roots {

// The system attendant's number; users never take it.
constexpr char kAttendant[] = "100";

// Deterministic per-user variety: the same root on every machine and run.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ull + 0x632BE59BD9B4E019ull) {}
  uint64_t Next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  int Below(int n) { return static_cast<int>(Next() % static_cast<uint64_t>(n)); }
  bool OneIn(int n) { return Below(n) == 0; }

 private:
  uint64_t state_;
};

template <std::size_t N>
const char* Pick(Random& r, const char* const (&list)[N]) {
  return list[r.Below(static_cast<int>(N))];
}

// Builds one file in the common text format.
class Text {
 public:
  Text& Comment(const std::string& text) {
    out_ += "# " + text + "\n";
    return *this;
  }
  Text& Section(const std::string& name) {
    if (!out_.empty()) out_ += '\n';
    out_ += "section " + name + "\n{\n";
    return *this;
  }
  Text& Key(const char* key, const std::string& value) {
    out_ += key;
    out_ += " = ";
    out_ += value;
    out_ += '\n';
    return *this;
  }
  Text& Key(const char* key, long value) { return Key(key, std::to_string(value)); }
  // A text key left out when empty, as the web configuration saves it.
  Text& Optional(const char* key, const std::string& value) {
    return value.empty() ? *this : Key(key, value);
  }
  Text& End() {
    out_ += "}\n";
    return *this;
  }
  std::string& str() { return out_; }

 private:
  std::string out_;
};

// Writes `text` to `path` (created or truncated); throws std::runtime_error
// when it cannot.
void WriteFile(const std::string& path, const std::string& text);

// The system-wide files, the attendant and the line database of a root of
// `users` users, into its telephony folder `tel` (ending in "/", with its
// regional/ and extensiondb/attendant/ folders made).
void WriteSystemFiles(const std::string& tel, int users);

}  // namespace bench_roots

#endif  // CMCFG_BENCH_GENERATED_TEXT_H_
