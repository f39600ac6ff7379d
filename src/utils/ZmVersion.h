// The version of the whole system. It stands here only: the build reads it from these two lines.
#ifndef ZM_VERSION_H
#define ZM_VERSION_H

/// @file
/// The version.

inline constexpr char kZmVersion[] = "6.10-1";       ///< Release and packaging revision.
inline constexpr char kZmBuild[] = "rel-6.10-0014";  ///< Name of the build.

#endif
