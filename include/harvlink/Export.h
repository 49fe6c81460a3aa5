#pragma once

/// @file
/// Marks what leaves the shared object. Everything else has hidden visibility.

/// Marks a name that leaves the shared object.
#define HARVLINK_EXPORT __attribute__((visibility("default")))
