#ifndef CMCFG_PLATFORM_BASE_ARENA_H_
#define CMCFG_PLATFORM_BASE_ARENA_H_

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace cfg {

// Bump allocation for the index of a parsed document, freed all at once
// with the arena. Small documents (every real configuration file) stay on
// the heap: one chunk for the text and its tables, no system call. Large
// documents get their memory in big chunks backed by huge pages where the
// system offers them: building the index of a 47 MB file from plain heap
// chunks takes about four times as long, most of it in page faults.
class Arena {
 public:
  // Where chunks come from. kHeapOnly: always the heap (operator new);
  // kMapLarge: chunks of 4 MiB and more are mapped on their own and offered
  // huge pages, smaller ones come from the heap.
  enum class Memory { kHeapOnly, kMapLarge };

  // Texts below this size are small: their arena is kHeapOnly. The text and
  // its tables (about 2.5 times the text) then fit in less than the couple
  // of 2 MiB huge pages a mapping would round up to, so mapping cannot pay,
  // and reading a small file costs no mmap, madvise or munmap.
  static constexpr size_t kSmallText = size_t{1} << 20;

  // `expected`: bytes the owner expects to need; sizes the first chunk.
  explicit Arena(size_t expected = 0, Memory memory = Memory::kMapLarge);
  ~Arena();
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  void* Allocate(size_t bytes, size_t align);

  // The arena for the tables of a document parsed from `text_bytes` of
  // text: sized for its section and entry tables (about one and a half
  // times the text), and kHeapOnly below kSmallText. The one rule for how a
  // document's memory is chosen.
  static std::unique_ptr<Arena> ForTables(size_t text_bytes);
  // The same with room for the text itself as well, for a reader that puts
  // the text in the arena before it is parsed.
  static std::unique_ptr<Arena> ForText(size_t text_bytes);

  // Chunks obtained by mapping so far (for tests and measurements).
  size_t mapped_chunks() const;

 private:
  struct Chunk {
    char* base;          // what was mapped, for unmapping
    size_t mapped_size;
    char* data;          // where allocation starts
    size_t size;
    bool mapped;
  };
  void NewChunk(size_t at_least);
  // An arena of `expected` bytes for a document of `text_bytes`.
  static std::unique_ptr<Arena> ForDocument(size_t expected, size_t text_bytes);

  std::vector<Chunk> chunks_;
  char* next_ = nullptr;
  char* end_ = nullptr;
  size_t next_chunk_size_;
  Memory memory_;
};

// A standard allocator over an Arena; without one it is the global heap.
// Freeing into an arena does nothing (and never touches the arena, which may
// already be gone when a moved-from container lets go of its storage).
template <typename T>
class ArenaAllocator {
 public:
  using value_type = T;
  using propagate_on_container_copy_assignment = std::true_type;
  using propagate_on_container_move_assignment = std::true_type;
  using propagate_on_container_swap = std::true_type;
  using is_always_equal = std::false_type;

  ArenaAllocator() noexcept = default;
  explicit ArenaAllocator(Arena* arena) noexcept : arena_(arena) {}
  template <typename U>
  ArenaAllocator(const ArenaAllocator<U>& other) noexcept : arena_(other.arena()) {}

  T* allocate(size_t n) {
    if (arena_ == nullptr) return static_cast<T*>(::operator new(n * sizeof(T)));
    return static_cast<T*>(arena_->Allocate(n * sizeof(T), alignof(T)));
  }
  void deallocate(T* p, size_t) noexcept {
    if (arena_ == nullptr) ::operator delete(p);
  }

  Arena* arena() const noexcept { return arena_; }

 private:
  Arena* arena_ = nullptr;
};

template <typename T, typename U>
bool operator==(const ArenaAllocator<T>& a, const ArenaAllocator<U>& b) noexcept {
  return a.arena() == b.arena();
}
template <typename T, typename U>
bool operator!=(const ArenaAllocator<T>& a, const ArenaAllocator<U>& b) noexcept {
  return !(a == b);
}

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_ARENA_H_
