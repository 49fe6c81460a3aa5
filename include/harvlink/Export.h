#pragma once

/// @file
/// Marks the names that the shared object exports. All others have hidden visibility.

/// Marks a name that the shared object exports.
#define HARVLINK_EXPORT __attribute__((visibility("default")))
