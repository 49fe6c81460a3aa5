#pragma once

/// @file
/// Marks the names that the shared object exports. All others are hidden. A program for Windows that links the archive instead
/// defines HARVLINK_STATIC; the CMake package does it.

/// Marks a name that the shared object exports.
#if !defined(_WIN32)
#define HARVLINK_EXPORT __attribute__((visibility("default")))
#elif defined(HARVLINK_STATIC)
#define HARVLINK_EXPORT
#elif defined(HARVLINK_BUILDS_LIBRARY)
#define HARVLINK_EXPORT __declspec(dllexport)
#else
#define HARVLINK_EXPORT __declspec(dllimport)
#endif
