#include "simulator/base/Descriptor.h"

#include <unistd.h>

namespace harvlink::simulator {

Descriptor::~Descriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

} // namespace harvlink::simulator
