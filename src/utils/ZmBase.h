#ifndef ZM_BASE_H
#define ZM_BASE_H

#if __cplusplus <= 201703L
#error "libZmApi needs C++20: compile with -std=c++20"
#endif

#include <cstddef>
#include <new>

#include "ZmExport.h"

/// The root of the value classes: no data, and a virtual destructor so that containers can destroy
/// what they own through a base pointer. The objects are many and small, so they come from the
/// library's pool.
class ZM_EXPORT ZmBase {
 public:
  ZmBase() = default;
  ZmBase(const ZmBase&) = default;             ///< Nothing to copy.
  ZmBase& operator=(const ZmBase&) = default;  ///< Nothing to copy.
  virtual ~ZmBase() = default;                 ///< Slot 0 of every value class.

  static void* operator new(std::size_t size);                             ///< From the pool.
  static void* operator new(std::size_t, const std::nothrow_t&) noexcept;  ///< Null: no memory.
  static void* operator new(std::size_t, void* place) { return place; }    ///< In place.
  static void operator delete(void* object, std::size_t size) noexcept;    ///< To the pool.
  static void operator delete(void*, void*) noexcept {}                    ///< In place.
};

#endif
