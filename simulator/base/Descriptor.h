#pragma once

#include <utility>

namespace harvlink::simulator {

/// Owner of a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Descriptor();

    int Get() const { return descriptor_; }
    bool IsOpen() const { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

} // namespace harvlink::simulator
