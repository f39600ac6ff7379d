// Cheap blocks for the many small texts and arrays of a configuration. Internal.
//
// Blocks of up to 4 KiB come from per-thread free lists that are filled from larger chunks
// and kept for reuse until the process ends; larger blocks pass straight to the system allocator.
// Once a thread holds a megabyte its chunks are huge pages, where the system has them.
// A build with ZM_NO_POOL, or under a sanitizer, passes every block to the system allocator, so
// that tools see each one. All decisions are taken inside the library: callers may be built
// differently.
#ifndef ZM_MEMORY_H
#define ZM_MEMORY_H

#include <cstddef>

// A block of at least `bytes` bytes, aligned for any object. Throws std::bad_alloc only.
void* zm_allocate(std::size_t bytes);

// The same, filled with zero bytes; large blocks are touched only where they are used.
void* zm_allocate_zeroed(std::size_t bytes);

// Gives a block back; `bytes` is what it was asked for with. Null is ignored.
void zm_release(void* block, std::size_t bytes) noexcept;

#endif
