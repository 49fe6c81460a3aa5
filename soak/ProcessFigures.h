#pragma once

#include <cstddef>
#include <string>

#include <sys/types.h>

namespace harvlink::soak {

/// The resources of a process that must not grow.
struct ProcessFigures {
    std::string name;
    std::size_t residentKiB = 0;
    std::size_t heapKiB = 0; ///< in use; of this process only
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t spareDescriptors = 0; ///< descriptors that it may open once, when it first needs them
};

ProcessFigures FiguresOf(std::string const& name, pid_t process);
ProcessFigures OwnFigures();

/// Describes what has grown by more than the noise of an allocator. Empty if nothing has.
std::string Growth(ProcessFigures const& before, ProcessFigures const& after);

} // namespace harvlink::soak
