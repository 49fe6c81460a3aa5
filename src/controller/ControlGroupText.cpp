#include <ostream>

#include "harvlink/ControlGroupInterface.h"

namespace harvlink {

std::ostream& operator<<(std::ostream& stream, PositionErrorData const& data) {
    for (std::size_t axis = 0; axis < data.axes.size(); ++axis) {
        stream << "Axis " << axis << " : " << data.axes[axis] << std::endl;
    }
    return stream;
}

std::ostream& operator<<(std::ostream& stream, TorqueData const& data) {
    stream << "Control Group Id: " << data.controlGroup;
    // The format has seven axes: the eighth is never printed.
    for (std::size_t axis = 0; axis < data.axes.size() - 1; ++axis) {
        stream << "\nAxis " << axis << " : " << data.axes[axis];
    }
    return stream;
}

} // namespace harvlink
