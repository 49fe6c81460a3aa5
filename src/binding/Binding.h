#pragma once

#include "binding/InteropHelper.h"
#include "harvlink/harvlink.h"
#include "harvlink/harvlink_c.h"

// The plain functions are defined in the namespace in which the header declares them: elsewhere they would be other ones,
// which are not exported.

/// The cell behind a handle; null inside after a failed connection.
struct ControllerCell {
    harvlink::QuorvanController* controller = nullptr;
    bool isStrict = false; ///< Rule::NoExceptions holds, and a text that could not be returned is a failure
};

namespace harvlink::Binding {

/// The handle of a new connection. Never released, as a handle may be looked at after its connection was closed; all of them
/// stay reachable, so that nobody takes them for lost memory. Throws std::bad_alloc.
ControllerHandle NewHandle(QuorvanController* controller, bool isStrict);

inline QuorvanController& ControllerOf(ControllerHandle handle) {
    return *handle->controller;
}

/// A record that crosses as it is, seen from the other side. RecordLayout.cpp holds that both have one layout.
template <typename Record, typename Plain>
Record& As(Plain* plain) {
    static_assert(sizeof(Record) == sizeof(Plain));
    return *reinterpret_cast<Record*>(plain);
}

template <typename Record, typename Plain>
Record const& As(Plain const* plain) {
    static_assert(sizeof(Record) == sizeof(Plain));
    return *reinterpret_cast<Record const*>(plain);
}

/// The platform's one-byte bool out of a wider integer: only the low eight bits count.
inline bool LowByteToBool(int value) {
    return static_cast<unsigned char>(value) != 0;
}

/// The status of the exception that is being handled. Where exceptions may pass, this one goes on instead.
StatusInfo StatusOrRethrow(ControllerHandle handle);

/// An operation that takes texts, which have to be copied.
template <typename Operation>
IStatusInfo Guarded(ControllerHandle handle, Operation const& operation) {
    try {
        return InteropHelper::ToPlain(operation());
    } catch (...) {
        return InteropHelper::ToPlain(StatusOrRethrow(handle));
    }
}

/// Copies the texts that an operation returns, which the caller frees.
class ReturnedTexts {
public:
    explicit ReturnedTexts(ControllerHandle controllerHandle) : handle(controllerHandle) {}

    /// Null if memory ran out.
    char* Copy(std::string_view text) { return Keep(InteropHelper::ConvertStringToChar8(text)); }
    char* Copy(std::vector<std::string> const& names) { return Keep(InteropHelper::ConvertStringVectorToChar8(names)); }

    /// That of the operation, if nothing is missing.
    IStatusInfo Checked(IStatusInfo status) const;

private:
    char* Keep(char* copy) {
        isMissing = isMissing || copy == nullptr;
        return copy;
    }

    ControllerHandle handle;
    bool isMissing = false;
};

} // namespace harvlink::Binding
