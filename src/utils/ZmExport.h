#ifndef ZM_EXPORT_H
#define ZM_EXPORT_H

#if __cplusplus <= 201703L
#error "libZmApi needs C++20: compile with -std=c++20"
#endif

/// @file
/// What the shared library shows.

/// Stands before what programs may use: all else of the library is hidden from them.
#define ZM_EXPORT __attribute__((visibility("default")))

#endif
