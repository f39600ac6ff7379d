#include "ZmMemory.h"

#include <sys/mman.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer)
#define ZM_NO_POOL 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZM_NO_POOL 1
#endif

namespace {

// As operator new: never null.
void* checked(void* block) {
  if (!block) throw std::bad_alloc();
  return block;
}

constexpr std::size_t kHuge = std::size_t{2} * 1024 * 1024;  // of a huge page

// Advice that may be refused without harm: page faults would take a third of a large run's time.
void* hugely(void* block, std::size_t bytes) {
  if (block && bytes >= 2 * kHuge) {
    const std::uintptr_t inset = -reinterpret_cast<std::uintptr_t>(block) % kHuge;
    ::madvise(static_cast<char*>(block) + inset, (bytes - inset) / kHuge * kHuge, MADV_HUGEPAGE);
  }
  return block;
}

void* large(std::size_t bytes) { return checked(hugely(std::malloc(bytes), bytes)); }
void* large_zeroed(std::size_t bytes) { return checked(hugely(std::calloc(bytes, 1), bytes)); }

}  // namespace

#ifdef ZM_NO_POOL

void* zm_allocate(std::size_t bytes) { return large(bytes); }
void* zm_allocate_zeroed(std::size_t bytes) { return large_zeroed(bytes); }
void zm_release(void* block, std::size_t) noexcept { std::free(block); }

#else

namespace {

constexpr std::size_t kGrain = 16;     // step between the block sizes, and their alignment
constexpr std::size_t kPooled = 4096;  // largest block that is pooled
constexpr std::size_t kChunk = 65536 - 64;
constexpr std::size_t kSmallChunks = 16;  // before chunks are huge
constexpr std::size_t kClasses = kPooled / kGrain + 1;

struct Block {
  Block* next;
  Block* lists;  // in the depot: the next list of this size
};

using Lists = std::array<Block*, kClasses>;

struct Pool {
  Lists free{};
  char* at = nullptr;  // unused rest of the newest chunk
  std::size_t left = 0;
  std::size_t chunks = 0;
};

constinit thread_local Pool pool;

// Where a thread that ends leaves its free blocks, list by list, for the others.
struct Depot {
  std::mutex mutex;
  Lists lists{};
};

Depot& depot() {
  static Depot* const shared = new Depot;  // never destroyed: other statics may release late
  return *shared;
}

struct AtThreadEnd {
  ~AtThreadEnd() {
    const std::lock_guard lock(depot().mutex);
    for (std::size_t i = 0; i < kClasses; ++i) {
      if (!pool.free[i]) continue;
      pool.free[i]->lists = depot().lists[i];
      depot().lists[i] = pool.free[i];
      pool.free[i] = nullptr;
    }
  }
};

// A large configuration touches all it asks for, so its pages are had at once.
void new_chunk() {
  const bool huge = pool.chunks >= kSmallChunks;
  pool.at =
      static_cast<char*>(checked(huge ? std::aligned_alloc(kHuge, kHuge) : std::malloc(kChunk)));
  pool.left = huge ? kHuge : kChunk;
  ++pool.chunks;
  if (!huge) return;
  ::madvise(pool.at, kHuge, MADV_HUGEPAGE);
#ifdef MADV_POPULATE_WRITE
  ::madvise(pool.at, kHuge, MADV_POPULATE_WRITE);
#endif
}

void* refill(std::size_t size) {
  thread_local const AtThreadEnd hand_over;
  static_cast<void>(hand_over);
  {
    const std::lock_guard lock(depot().mutex);
    Block*& lists = depot().lists[size / kGrain];
    if (Block* block = lists) {
      lists = block->lists;
      pool.free[size / kGrain] = block->next;
      return block;
    }
  }
  new_chunk();
  void* block = pool.at;
  pool.at += size;
  pool.left -= size;
  return block;
}

}  // namespace

void* zm_allocate(std::size_t bytes) {
  if (bytes > kPooled) return large(bytes);
  const std::size_t size = (bytes + kGrain - 1) & ~(kGrain - 1);
  Block*& blocks = pool.free[size / kGrain];
  if (Block* block = blocks) {
    blocks = block->next;
    __builtin_prefetch(blocks);  // the next call reads it, and it may be far from here
    return block;
  }
  if (pool.left < size) return refill(size);
  void* block = pool.at;
  pool.at += size;
  pool.left -= size;
  return block;
}

void* zm_allocate_zeroed(std::size_t bytes) {
  if (bytes > kPooled) return large_zeroed(bytes);
  return std::memset(zm_allocate(bytes), 0, bytes);
}

void zm_release(void* block, std::size_t bytes) noexcept {
  if (!block) return;
  if (bytes > kPooled) return std::free(block);
  auto* freed = static_cast<Block*>(block);
  Block*& blocks = pool.free[(bytes + kGrain - 1) / kGrain];
  freed->next = blocks;
  blocks = freed;
}

#endif
