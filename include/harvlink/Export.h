#pragma once

/// @file
/// Marks what leaves the shared object. Everything else has hidden visibility.

/// Marks a name that leaves the shared object.
#if defined(HARVLINK_STATIC)
#define HARVLINK_EXPORT
#else
#define HARVLINK_EXPORT __attribute__((visibility("default")))
#endif
