#pragma once

#include "binding/InteropHelper.h"
#include "harvlink/harvlink.h"
#include "harvlink/harvlink_c.h"

/// The cell behind a handle; null inside after a failed connection.
struct ControllerCell {
    harvlink::QuorvanController* controller;
};

namespace harvlink::Binding {

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

} // namespace harvlink::Binding
