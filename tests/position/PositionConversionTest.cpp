#include <cmath>
#include <limits>
#include <span>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "position/AxisScaling.h"
#include "position/FigureBits.h"
#include "position/RobotPosition.h"
#include "support/WireBytes.h"

namespace harvlink::test {
namespace {

using enum CoordinateType;
using enum UAPICoordType;
using Axes = std::array<double, 8>;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

template <typename Record>
Bytes Image(Record const& record) {
    auto const bytes = std::as_bytes(std::span(&record, 1));
    auto const* const first = reinterpret_cast<std::uint8_t const*>(bytes.data());
    return {first, first + bytes.size()};
}

Figure FigureOf(std::uint32_t bits, std::uint32_t extendedBits) {
    return HelperFunction::BitsetToFigure(bits, extendedBits);
}

PositionData const sample{.coordinateType = UserCoordinate,
                          .figure = FigureOf(0b101001, 0b10010),
                          .toolNumber = 0x12345,
                          .userCoordinateNumber = -2,
                          .axes = {1.00005, -2.0005, 3.0, 4.00005, -5.5, 6.0, 0.0, -0.00005}};

TEST(PositionConversion, RecordsAreExactToTheByte) {
    EXPECT_TRUE(SameBytes(Words({19, 0b101001, 0x12345, -2, 0b10010, 1000, -2001, 3000, 40001, -55000, 60000, 0, -1}),
                          Image(ToRobotPositionMsg(sample))));
    Bytes const axes = Words({1000, -2001, 3000, 40001, -55000, 60000, 0, -1});
    EXPECT_TRUE(SameBytes(U32(4) + U16(-2) + U16(0x2345) + Words({0b101001, 0}) + axes,
                          Image(UAPIPositionData(sample, false))));
    EXPECT_TRUE(SameBytes(U32(1) + U16(-2) + U16(0x2345) +
                              Words({0b101001, 0, 10001, -20005, 30000, 40001, -55000, 60000, 0, -1}),
                          Image(UAPIPositionData(sample, true))));
    BasePositionVariableMsg const base{.coordinateType = 16, .axes = BaseAxisScaling.ToWire(sample.axes)};
    EXPECT_TRUE(SameBytes(Words({16, 1000, -2001, 3000, 4000, -5500, 6000, 0, 0}), Image(base)));
}

TEST(PositionConversion, TowardTheWireOneAxisAtATime) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    struct {
        double value;
        std::int32_t linear, rotational, pulse; ///< factors 1000, 10000 and none
    } const cases[] = {
        {0.0005, 1, 5, 0},
        {-0.0005, -1, -5, 0},
        {0.0004999, 0, 5, 0},
        {0.00005, 0, 1, 0},
        {-0.00005, 0, -1, 0},
        {1234.9, 1234900, 12349000, 1234},
        {-1234.9, -1234900, -12349000, -1234},
        {214748.3647, 214748365, 2147483647, 214748},
        {214748.36476, 214748365, lowest, 214748},
        {2147483.647, 2147483647, lowest, 2147483},
        {2147483.6476, lowest, lowest, 2147483},
        {-2147483.648, lowest, lowest, -2147483},
        {2147483647.9, lowest, lowest, 2147483647},
        {2147483648.0, lowest, lowest, lowest},
        {-2147483648.9, lowest, lowest, lowest},
        {1e308, lowest, lowest, lowest},
        {infinity, lowest, lowest, lowest},
        {-infinity, lowest, lowest, lowest},
        {std::numeric_limits<double>::quiet_NaN(), lowest, lowest, lowest},
        {std::numeric_limits<double>::denorm_min(), 0, 0, 0},
    };
    for (auto const& example : cases) {
        PositionData position;
        position.axes.fill(example.value);
        position.coordinateType = RobotCoordinate;
        for (WireAxes const& wire : {ToRobotPositionMsg(position).axes, UAPIPositionData(position, false).axes}) {
            EXPECT_EQ(wire[2], example.linear) << example.value;
            EXPECT_EQ(wire[3], example.rotational) << example.value;
        }
        EXPECT_EQ(UAPIPositionData(position, true).axes[0], example.rotational) << example.value;
        EXPECT_EQ(BaseAxisScaling.ToWire(position.axes)[7], example.linear) << example.value;
        position.coordinateType = Pulse;
        for (WireAxes const& wire : {ToRobotPositionMsg(position).axes, UAPIPositionData(position, false).axes}) {
            EXPECT_EQ(wire[0], example.pulse) << example.value;
            EXPECT_EQ(wire[7], example.pulse) << example.value;
        }
    }
}

TEST(PositionConversion, CoordinateTypesMapBothWays) {
    struct {
        int number, toExtended, fromExtended; ///< the latter: what the extended type of that number becomes
    } const cases[] = {
        {0, 0, 0},    {1, 255, 17},  {2, 255, 16},  {3, 255, 17},  {4, 255, 19},   {5, 255, 55}, {6, 255, 18},
        {7, 255, 20}, {8, 255, 55},  {15, 255, 55}, {16, 2, 55},   {17, 3, 55},    {18, 6, 55},  {19, 4, 55},
        {20, 7, 55},  {55, 255, 55}, {56, 255, 55}, {-1, 255, 55}, {255, 255, 55},
    };
    for (auto const& [number, toExtended, fromExtended] : cases) {
        EXPECT_EQ(static_cast<int>(UAPIUtils::CoordinateTypeToUAPICoordType(static_cast<CoordinateType>(number))),
                  toExtended);
        auto const extended = static_cast<UAPICoordType>(number);
        EXPECT_EQ(static_cast<int>(UAPIUtils::UAPICoordTypeToCoordinateType(extended)), fromExtended) << number;
        // A type without an extended type is scaled like a Cartesian position.
        UAPIPositionData wire;
        wire.coordinateType = extended;
        wire.axes.fill(10000);
        PositionData const position = wire;
        EXPECT_EQ(static_cast<int>(position.coordinateType), fromExtended);
        EXPECT_EQ(position.axes[2], number == 0 ? 10000.0 : number == 1 ? 1.0 : 10.0) << number;
        EXPECT_EQ(position.axes[3], number == 0 ? 10000.0 : 1.0) << number;
    }
}

TEST(PositionConversion, FigureBitsStandInTheirOwnOrder) {
    struct {
        std::int32_t (*field)(Figure const&);
        unsigned bit, extendedBit;
    } const fields[] = {
        {[](Figure const& f) { return static_cast<std::int32_t>(f.frontOrBack); }, 1, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.upperOrLower); }, 2, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.flipOrNoFlip); }, 4, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.rAngle); }, 8, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.tAngle); }, 16, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.sAngle); }, 32, 0},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.lAngle); }, 0, 1},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.uAngle); }, 0, 2},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.bAngle); }, 0, 4},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.eAngle); }, 0, 8},
        {[](Figure const& f) { return static_cast<std::int32_t>(f.wAngle); }, 0, 16},
    };
    for (auto const& [field, bit, extendedBit] : fields) {
        EXPECT_EQ(field(FigureOf(bit, extendedBit)), 1) << bit << ' ' << extendedBit;
        EXPECT_EQ(field(FigureOf(~bit, ~extendedBit)), 0) << bit << ' ' << extendedBit;
    }
    // All values, written over targets whose other bits must not change.
    for (unsigned bits = 0; bits < 64 * 32; ++bits) {
        std::bitset<8> figure(0b10'000000 | (~bits & 63));
        std::bitset<8> extended(0b101'00000 | (~(bits >> 6) & 31));
        HelperFunction::FigureToBitsets(FigureOf(0xff'ffffc0U | bits, 0xffffe0U | bits >> 6), figure, extended);
        ASSERT_EQ(figure.to_ulong(), 0b10'000000U | (bits & 63));
        ASSERT_EQ(extended.to_ulong(), 0b101'00000U | (bits >> 6));
    }
}

TEST(PositionConversion, ExtendedRecordLosesTheExtendedFigure) {
    PositionData const back = UAPIPositionData(sample, false);
    EXPECT_EQ(ToRobotPositionMsg(back).figure, 0b101001U);
    EXPECT_EQ(ToRobotPositionMsg(back).extendedFigure, 0U);
    EXPECT_EQ(back.toolNumber, 0x2345);
    EXPECT_EQ(back.userCoordinateNumber, -2);
    PositionData odd;
    odd.figure.upperOrLower = UpperOrLower{3};
    EXPECT_EQ(UAPIPositionData(odd, false).figure, 0b110U);
    EXPECT_EQ(ToRobotPositionMsg(odd).figure, 0b10U) << "there a field is one bit";
    UAPIPositionData wire(sample, false);
    wire.toolNumber = -1;
    wire.figure = 0xffffffc1;
    EXPECT_EQ(static_cast<PositionData>(wire).toolNumber, -1);
    EXPECT_EQ(ToRobotPositionMsg(wire).figure, 1U) << "bits above the figure are ignored";
}

RC_GTEST_PROP(PositionProperty, EachWireFormReturnsWithinHalfAUnit, ()) {
    auto const type =
        *rc::gen::element(Pulse, BaseCoordinate, RobotCoordinate, ToolCoordinate, UserCoordinate, MasterTool);
    bool const isPulse = type == Pulse;
    PositionData position{.coordinateType = type,
                          .figure = FigureOf(*rc::gen::inRange(0U, 64U), *rc::gen::inRange(0U, 32U)),
                          .toolNumber = *rc::gen::inRange(-32768, 32768),
                          .userCoordinateNumber = *rc::gen::inRange(-32768, 32768)};
    for (double& axis : position.axes) {
        axis = static_cast<double>(*rc::gen::inRange<std::int64_t>(-200'000'000'000, 200'000'000'000)) * 1e-6;
    }
    auto const isNear = [&](Axes const& axes, double unit, double otherUnit) {
        for (std::size_t i = 0; i < 8; ++i) {
            double const error = std::abs(axes[i] - position.axes[i]);
            bool const isTruncated = error < 1.0 && std::abs(axes[i]) <= std::abs(position.axes[i]);
            bool const isRounded = error <= (i < 3 ? unit : otherUnit) / 2 + 1e-9;
            RC_ASSERT((isPulse ? isTruncated : isRounded));
        }
    };
    PositionData const older = FromRobotPositionMsg(ToRobotPositionMsg(position));
    isNear(older.axes, 0.001, 0.0001);
    RC_ASSERT(Image(older.figure) == Image(position.figure));
    PositionData const extended = UAPIPositionData(position, false);
    isNear(extended.axes, 0.001, 0.0001);
    for (PositionData const& back : {older, extended}) {
        RC_ASSERT(back.coordinateType == type);
        RC_ASSERT(back.toolNumber == position.toolNumber);
        RC_ASSERT(back.userCoordinateNumber == position.userCoordinateNumber);
    }
    if (!isPulse) {
        isNear(static_cast<PositionData>(UAPIPositionData(position, true)).axes, 0.0001, 0.0001);
        isNear(BaseAxisScaling.FromWire(BaseAxisScaling.ToWire(position.axes)), 0.001, 0.001);
    }
}

} // namespace
} // namespace harvlink::test
