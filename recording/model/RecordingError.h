#pragma once

#include <stdexcept>

namespace harvlink::recording {

/// A recording or a capture can't be written or read. The text names the file and says what to do.
class RecordingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The disk has no more space.
class DiskFull : public RecordingError {
public:
    using RecordingError::RecordingError;
};

/// Somebody else holds the file; the same may succeed later.
class Busy : public RecordingError {
public:
    using RecordingError::RecordingError;
};

} // namespace harvlink::recording
