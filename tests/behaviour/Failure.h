#pragma once

#include <cstddef>

/// @file
/// Makes this computer refuse memory or a system call at a chosen moment.

namespace harvlink::test {

enum class Resource { Memory, SystemCall };

/// In its lifetime, the n-th use of a resource by this thread, counted from 1, fails.
class Failure {
public:
    Failure(Resource failing, std::size_t number);
    Failure(Failure const&) = delete;
    Failure& operator=(Failure const&) = delete;
    ~Failure();

    /// False in a build whose sanitizer has taken the allocation functions.
    static bool CanFail(Resource failing);

    /// Arms it on this thread, or none. It may not end before it is disarmed, or before the thread.
    static void Arm(Failure* planned);

    /// Arms it for the calls of an operation alone, and not for what stands around them.
    class Scope {
    public:
        explicit Scope(Failure* planned);
        Scope(Scope const&) = delete;
        Scope& operator=(Scope const&) = delete;
        ~Scope();
    };

    bool hasHappened = false;

private:
    friend bool Fails(Resource used);

    Resource resource;
    std::size_t left;
};

/// What the test needs itself, in its lifetime, neither counts nor fails.
class NotCounted {
public:
    NotCounted();
    NotCounted(NotCounted const&) = delete;
    NotCounted& operator=(NotCounted const&) = delete;
    ~NotCounted();
};

} // namespace harvlink::test
