#ifndef ZM_EXPORT_H
#define ZM_EXPORT_H

/// @file
/// What the shared library shows.

/// Stands before what programs may use: all else of the library is hidden from them.
#define ZM_EXPORT __attribute__((visibility("default")))

#endif
