#include "platform/base/arena.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

namespace cfg {

namespace {

const size_t kSmallChunk = 4096;
// From this size on a chunk is mapped on its own and offered huge pages.
const size_t kMappedChunk = size_t{4} << 20;
const size_t kHugePage = size_t{2} << 20;

}  // namespace

Arena::Arena(size_t expected, Memory memory)
    : next_chunk_size_(std::max(expected, kSmallChunk)), memory_(memory) {}

std::unique_ptr<Arena> Arena::ForDocument(size_t expected, size_t text_bytes) {
  return std::unique_ptr<Arena>(
      new Arena(expected, text_bytes < kSmallText ? Memory::kHeapOnly : Memory::kMapLarge));
}

std::unique_ptr<Arena> Arena::ForTables(size_t text_bytes) {
  return ForDocument(text_bytes * 3 / 2 + 256, text_bytes);
}

std::unique_ptr<Arena> Arena::ForText(size_t text_bytes) {
  return ForDocument(text_bytes + text_bytes * 3 / 2 + 256, text_bytes);
}

Arena::~Arena() {
  for (const Chunk& c : chunks_) {
    if (c.mapped) {
      munmap(c.base, c.mapped_size);
    } else {
      delete[] c.data;
    }
  }
}

void* Arena::Allocate(size_t bytes, size_t align) {
  uintptr_t p = (reinterpret_cast<uintptr_t>(next_) + align - 1) & ~(uintptr_t{align} - 1);
  if (next_ == nullptr || p + bytes > reinterpret_cast<uintptr_t>(end_)) {
    NewChunk(bytes + align);
    p = (reinterpret_cast<uintptr_t>(next_) + align - 1) & ~(uintptr_t{align} - 1);
  }
  next_ = reinterpret_cast<char*>(p + bytes);
  return reinterpret_cast<void*>(p);
}

void Arena::NewChunk(size_t at_least) {
  size_t size = std::max(next_chunk_size_, at_least);
  next_chunk_size_ = std::min(size * 2, size_t{1} << 30);
  Chunk chunk{nullptr, 0, nullptr, size, false};
  if (memory_ == Memory::kMapLarge && size >= kMappedChunk) {
    // Huge pages need 2 MB alignment: map one page more and start aligned.
    size = (size + kHugePage - 1) & ~(kHugePage - 1);
    size_t mapped = size + kHugePage;
    void* mem = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mem != MAP_FAILED) {
      char* base = static_cast<char*>(mem);
      char* data = reinterpret_cast<char*>(
          (reinterpret_cast<uintptr_t>(base) + kHugePage - 1) & ~(uintptr_t{kHugePage} - 1));
#ifdef MADV_HUGEPAGE
      madvise(data, size, MADV_HUGEPAGE);  // a hint: fine if refused
#endif
      chunk = Chunk{base, mapped, data, size, true};
    }
  }
  if (chunk.data == nullptr) chunk = Chunk{nullptr, 0, new char[size], size, false};
  chunks_.push_back(chunk);
  next_ = chunk.data;
  end_ = chunk.data + chunk.size;
}

size_t Arena::mapped_chunks() const {
  size_t mapped = 0;
  for (const Chunk& c : chunks_) mapped += c.mapped ? 1 : 0;
  return mapped;
}

}  // namespace cfg
