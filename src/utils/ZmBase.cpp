#include "ZmBase.h"

#include "ZmMemory.h"

void* ZmBase::operator new(std::size_t size) { return zm_allocate(size); }

void* ZmBase::operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return zm_allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void ZmBase::operator delete(void* object, std::size_t size) noexcept { zm_release(object, size); }
