#include "behaviour/Failure.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <new>

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/uio.h>

// The linker leads the calls of the library to `__wrap_` functions. Those of the standard library, which is linked already,
// find the functions of this program before those of the system.

namespace harvlink::test {
namespace {

thread_local Failure* armed = nullptr;
thread_local unsigned notCounted = 0;

} // namespace

Failure::Failure(Resource failing, std::size_t number) : resource(failing), left(number) {}

Failure::~Failure() = default;

void Failure::Arm(Failure* planned) {
    armed = planned;
}

Failure::Scope::Scope(Failure* planned) {
    Arm(planned);
}

Failure::Scope::~Scope() {
    Arm(nullptr);
}

NotCounted::NotCounted() {
    ++notCounted;
}

NotCounted::~NotCounted() {
    --notCounted;
}

bool Fails(Resource used) {
    if (armed == nullptr || notCounted != 0 || armed->resource != used || armed->left == 0 || --armed->left != 0) {
        return false;
    }
    armed->hasHappened = true;
    return true;
}

namespace {

bool SystemFails(int error) {
    if (!Fails(Resource::SystemCall)) {
        return false;
    }
    errno = error;
    return true;
}

template <typename Function>
Function* Next(Function* ofSanitizer, char const* name) {
    return ofSanitizer != nullptr ? ofSanitizer : reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace
} // namespace harvlink::test

using harvlink::test::Fails;
using harvlink::test::Next;
using harvlink::test::Resource;
using harvlink::test::SystemFails;

extern "C" {

void* __real_malloc(std::size_t size);
int __real_socket(int domain, int type, int protocol);
int __real_bind(int socket, sockaddr const* address, socklen_t length);
int __real_connect(int socket, sockaddr const* address, socklen_t length);
ssize_t __real_send(int socket, void const* data, std::size_t size, int flags);
ssize_t __real_sendto(int socket, void const* data, std::size_t size, int flags, sockaddr const* to, socklen_t length);
ssize_t __real_recvfrom(int socket, void* data, std::size_t size, int flags, sockaddr* from, socklen_t* length);
int __real_ppoll(pollfd* sockets, nfds_t count, timespec const* time, sigset_t const* mask);
long __real_syscall(long number, ...);

void* __wrap_malloc(std::size_t size) {
    return Fails(Resource::Memory) ? nullptr : __real_malloc(size);
}
int __wrap_socket(int domain, int type, int protocol) {
    return SystemFails(EMFILE) ? -1 : __real_socket(domain, type, protocol);
}
int __wrap_bind(int socket, sockaddr const* address, socklen_t length) {
    return SystemFails(EADDRINUSE) ? -1 : __real_bind(socket, address, length);
}
int __wrap_connect(int socket, sockaddr const* address, socklen_t length) {
    return SystemFails(ENETUNREACH) ? -1 : __real_connect(socket, address, length);
}
ssize_t __wrap_send(int socket, void const* data, std::size_t size, int flags) {
    return SystemFails(ENOBUFS) ? -1 : __real_send(socket, data, size, flags);
}
ssize_t __wrap_sendto(int socket, void const* data, std::size_t size, int flags, sockaddr const* to, socklen_t length) {
    return SystemFails(ENOBUFS) ? -1 : __real_sendto(socket, data, size, flags, to, length);
}
ssize_t __wrap_recvfrom(int socket, void* data, std::size_t size, int flags, sockaddr* from, socklen_t* length) {
    return SystemFails(ENOMEM) ? -1 : __real_recvfrom(socket, data, size, flags, from, length);
}
int __wrap_ppoll(pollfd* sockets, nfds_t count, timespec const* time, sigset_t const* mask) {
    return SystemFails(ENOMEM) ? -1 : __real_ppoll(sockets, count, time, mask);
}
long __wrap_syscall(long number, ...) {
    std::va_list list;
    va_start(list, number);
    long arguments[6];
    for (long& argument : arguments) {
        argument = va_arg(list, long);
    }
    va_end(list);
    return SystemFails(ENOMEM) ? -1
                               : __real_syscall(number, arguments[0], arguments[1], arguments[2], arguments[3],
                                                arguments[4], arguments[5]);
}

// What a sanitizer puts in the place of a function of the system goes on doing so.
[[gnu::weak]] FILE* __interceptor_fopen64(char const* path, char const* mode);
[[gnu::weak]] ssize_t __interceptor_write(int file, void const* data, std::size_t size);
[[gnu::weak]] ssize_t __interceptor_writev(int file, iovec const* parts, int count);
[[gnu::weak]] int __interceptor_pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*run)(void*),
                                               void* argument);

[[gnu::visibility("default")]] FILE* fopen64(char const* path, char const* mode) {
    return SystemFails(EMFILE) ? nullptr : Next(__interceptor_fopen64, "fopen64")(path, mode);
}
[[gnu::visibility("default")]] ssize_t write(int file, void const* data, std::size_t size) {
    return SystemFails(ENOSPC) ? -1 : Next(__interceptor_write, "write")(file, data, size);
}
[[gnu::visibility("default")]] ssize_t writev(int file, iovec const* parts, int count) {
    return SystemFails(ENOSPC) ? -1 : Next(__interceptor_writev, "writev")(file, parts, count);
}
[[gnu::visibility("default")]] int pthread_create(pthread_t* thread, pthread_attr_t const* attributes,
                                                  void* (*run)(void*), void* argument) {
    return SystemFails(EAGAIN)
               ? EAGAIN
               : Next(__interceptor_pthread_create, "pthread_create")(thread, attributes, run, argument);
}

} // extern "C"

// The thread sanitizer of clang has its own operators, which cannot be replaced.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define HARVLINK_TEST_OPERATORS_ARE_TAKEN
#endif
#endif

#if defined(HARVLINK_TEST_OPERATORS_ARE_TAKEN)

bool harvlink::test::Failure::CanFail(Resource failing) {
    return failing != Resource::Memory;
}

#else

bool harvlink::test::Failure::CanFail(Resource) {
    return true;
}

// All forms but the aligned ones: where one is replaced, an address sanitizer demands the others.
void* operator new(std::size_t size) {
    void* const memory = Fails(Resource::Memory) ? nullptr : __real_malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return Fails(Resource::Memory) ? nullptr : __real_malloc(size);
}

void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return operator new(size, std::nothrow);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::nothrow_t const&) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::nothrow_t const&) noexcept {
    std::free(memory);
}

#endif
