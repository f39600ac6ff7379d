// Big-endian numbers in byte buffers, as packs store them. Internal.
#ifndef ZM_PACK_BIG_ENDIAN_H
#define ZM_PACK_BIG_ENDIAN_H

#include <cstddef>
#include <type_traits>
#include <utility>

// Each byte is its own expression, not a turn of a loop: compilers make one instruction of them.

// Writes the value into sizeof(T) bytes, most significant first.
template <class T>
void zm_put_big_endian(unsigned char* to, T value) {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  const auto put = [&]<std::size_t... I>(std::index_sequence<I...>) {
    ((to[I] = static_cast<unsigned char>(bits >> (8 * (sizeof(T) - 1 - I)))), ...);
  };
  put(std::make_index_sequence<sizeof(T)>());
}

// Reads sizeof(T) bytes, most significant first.
template <class T>
T zm_get_big_endian(const unsigned char* from) {
  using Bits = std::make_unsigned_t<T>;
  const auto get = [&]<std::size_t... I>(std::index_sequence<I...>) {
    return static_cast<Bits>(
        (static_cast<Bits>(static_cast<Bits>(from[I]) << (8 * (sizeof(T) - 1 - I))) | ...));
  };
  return static_cast<T>(get(std::make_index_sequence<sizeof(T)>()));
}

#endif
