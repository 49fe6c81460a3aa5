#include <ostream>

#include "motion/MotionMessages.h"

namespace harvlink {

std::ostream& operator<<(std::ostream& stream, MoveInterpolationType const& type) {
    switch (type) {
    case MoveInterpolationType::Joint:
        return stream << "Joint";
    case MoveInterpolationType::Line:
        return stream << "Line";
    case MoveInterpolationType::Circle:
        return stream << "Circle";
    default:
        return stream << "Invalid or undefined";
    }
}

std::ostream& operator<<(std::ostream& stream, SpeedStruct const& speed) {
    return stream << "Linear Speed: " << speed.linearSpeed << " mm/sec\nJoint Speed: " << speed.jointSpeed
                  << "%\nAngular Speed: " << speed.angularSpeed << " deg/sec";
}

std::ostream& operator<<(std::ostream& stream, std::array<double, 8> const& axes) {
    stream << axes.front();
    for (std::size_t i = 1; i < axes.size(); ++i) {
        stream << ", " << axes[i];
    }
    return stream;
}

} // namespace harvlink
