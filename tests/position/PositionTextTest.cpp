#include <iomanip>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "position/FigureBits.h"
#include "position/PositionMessages.h"
#include "support/Printed.h"

namespace harvlink::test {
namespace {

/// The texts of the numbers from `first` on, each followed by a bar.
template <typename Enum>
std::string PrintedRange(int first, int last) {
    std::string text;
    for (int number = first; number <= last; ++number) {
        text += Printed(static_cast<Enum>(number)) + '|';
    }
    return text;
}

TEST(PositionText, WordsOfTheEnumerations) {
    std::string const unknown = "Unknown CoordinateType|";
    EXPECT_EQ(PrintedRange<CoordinateType>(15, 21), unknown +
                                                        "BaseCoordinate|RobotCoordinate|ToolCoordinate|"
                                                        "UserCoordinate|MasterTool|" +
                                                        unknown);
    EXPECT_EQ(PrintedRange<CoordinateType>(-1, 1), unknown + "Pulse|" + unknown);
    EXPECT_EQ(PrintedRange<CoordinateType>(55, 56), unknown + unknown);
    EXPECT_EQ(PrintedRange<FrontOrBack>(0, 1) + PrintedRange<UpperOrLower>(0, 1) + PrintedRange<FlipOrNoFlip>(0, 1) +
                  PrintedRange<AxisAngle>(0, 1),
              "Front|Back|Upper|Lower|Flip|NoFlip|<180|>180|");
    EXPECT_EQ(PrintedRange<AxisIndex::PulseAxis>(-1, 8),
              "Unknown AxisIndex::PulseAxis|S|L|U|R|B|T|E|W|Unknown AxisIndex::PulseAxis|");
    EXPECT_EQ(PrintedRange<AxisIndex::CartesianAxis>(-1, 8),
              "Unknown AxisIndex::CartesianAxis|X|Y|Z|Rx|Ry|Rz|Re|Rw|Unknown AxisIndex::CartesianAxis|");
    EXPECT_EQ(PrintedRange<UAPICoordType>(-1, 8),
              "Invalid or undefined|Base|User|Tool|TCP|Joint|Radian|Tool|Master Tool|Invalid or undefined|");
}

template <typename Axis>
void ExpectIncrementEndsAtEight() {
    auto axis = static_cast<Axis>(7);
    EXPECT_EQ(static_cast<int>(axis++), 8) << "the new value, though it stands behind";
    try {
        axis++;
        ADD_FAILURE() << "must throw";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "for E& operator ++ (E&)");
    }
    EXPECT_EQ(static_cast<int>(axis), 8);
}

TEST(PositionText, AxisIncrementEndsAtEight) {
    ExpectIncrementEndsAtEight<AxisIndex::PulseAxis>();
    ExpectIncrementEndsAtEight<AxisIndex::CartesianAxis>();
}

TEST(PositionText, FigureOnOneLine) {
    EXPECT_EQ(Printed(HelperFunction::BitsetToFigure(0b001000, 0)),
              "Front,  Upper, Flip, S<180, L<180, U<180, R>180, B<180, T<180, E<180, W<180");
    EXPECT_EQ(Printed(HelperFunction::BitsetToFigure(0b110111, 0b10101)),
              "Back,  Lower, NoFlip, S>180, L>180, U<180, R<180, B>180, T>180, E<180, W>180");
}

TEST(PositionText, PulsesHaveLettersAndCartesianNames) {
    PositionData position{.toolNumber = 3, .userCoordinateNumber = 7, .axes = {1, -2.5, 1234567, 4, 5, 6, 0, -8}};
    EXPECT_EQ(Printed(position), "Coordinate Type: Pulse\nTool Number: 3\nAxes: "
                                 "\nAxis S : 1 pulses.\nAxis L : -2.5 pulses.\nAxis U : 1.23457e+06 pulses."
                                 "\nAxis R : 4 pulses.\nAxis B : 5 pulses.\nAxis T : 6 pulses."
                                 "\nAxis E : 0 pulses.\nAxis W : -8 pulses.");
    auto const cartesian = [&](std::string const& type) {
        return "Coordinate Type: " + type +
               "\nFigure: \nFront,  Upper, Flip, S<180, L<180, U<180, R<180, B<180, T<180, E<180, W<180"
               "\nTool Number: 3\nUser Coordinate Number: 7\nAxes: "
               "\nAxis X : 1.00 millimeters.\nAxis Y : -2.50 millimeters.\nAxis Z : 1234567.00 millimeters."
               "\nAxis Rx : 4.00 degrees.\nAxis Ry : 5.00 degrees.\nAxis Rz : 6.00 degrees."
               "\nAxis Re : 0.00 degrees.\nAxis Rw : -8.00 degrees.";
    };
    for (auto const& [type, word] : {std::pair{CoordinateType::UserCoordinate, "UserCoordinate"},
                                     std::pair{CoordinateType::JointAngle, "Unknown CoordinateType"},
                                     std::pair{CoordinateType::Undefined, "Unknown CoordinateType"}}) {
        position.coordinateType = type;
        std::ostringstream text;
        text << std::fixed << std::setprecision(2) << position; // the stream's own format holds
        EXPECT_EQ(text.str(), cartesian(word));
    }
}

} // namespace
} // namespace harvlink::test
