#pragma once

/// @file
/// Marks what leaves the shared object. Everything else has hidden visibility.

#if defined(HARVLINK_STATIC)
#define HARVLINK_EXPORT
#else
#define HARVLINK_EXPORT __attribute__((visibility("default")))
#endif
