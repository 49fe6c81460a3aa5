#include "soak/WireImage.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

namespace harvlink::soak {

namespace {

/// The eleven flags of a figure, the first six in one word and the others in a second one.
using FigureFlags = std::array<std::int32_t, 11>;
constexpr std::size_t FirstWordFlags = 6;
constexpr std::size_t HeadWords = 5;

FigureFlags FlagsOf(Figure const& figure) {
    auto const number = [](auto value) { return static_cast<std::int32_t>(value); };
    return {number(figure.frontOrBack), number(figure.upperOrLower), number(figure.flipOrNoFlip), number(figure.rAngle),
            number(figure.tAngle),      number(figure.sAngle),       number(figure.lAngle),       number(figure.uAngle),
            number(figure.bAngle),      number(figure.eAngle),       number(figure.wAngle)};
}

Figure FigureOf(FigureFlags const& flags) {
    auto const angle = [&](std::size_t i) { return static_cast<AxisAngle>(flags[i]); };
    return {.frontOrBack = static_cast<FrontOrBack>(flags[0]),
            .upperOrLower = static_cast<UpperOrLower>(flags[1]),
            .flipOrNoFlip = static_cast<FlipOrNoFlip>(flags[2]),
            .sAngle = angle(5),
            .lAngle = angle(6),
            .uAngle = angle(7),
            .rAngle = angle(3),
            .bAngle = angle(8),
            .tAngle = angle(4),
            .eAngle = angle(9),
            .wAngle = angle(10)};
}

std::int32_t Word(FigureFlags const& flags, std::size_t first, std::size_t last) {
    std::int32_t word = 0;
    for (std::size_t i = first; i < last; ++i) {
        word |= flags[i] << (i - first);
    }
    return word;
}

double UnitsOf(CoordinateType type, std::size_t axis) {
    if (type == CoordinateType::Pulse) {
        return 1.0;
    }
    return type != CoordinateType::JointAngle && axis < 3 ? 1000.0 : 10000.0;
}

} // namespace

std::string ToHex(WireImage const& image) {
    std::string text;
    for (auto const byte : image) {
        text += fmt::format("{:02x}", byte);
    }
    return text;
}

void AppendText(WireImage& image, std::string const& text, std::size_t width) {
    auto const start = image.size();
    image.resize(start + width, 0);
    std::copy_n(text.begin(), std::min(text.size(), width), image.begin() + static_cast<std::ptrdiff_t>(start));
}

WireImage ImageOfPosition(PositionData const& position) {
    auto const flags = FlagsOf(position.figure);
    WireImage image;
    Append(image, static_cast<std::int32_t>(position.coordinateType));
    Append(image, Word(flags, 0, FirstWordFlags));
    Append(image, position.toolNumber);
    Append(image, position.userCoordinateNumber);
    Append(image, Word(flags, FirstWordFlags, flags.size()));
    for (std::size_t i = 0; i < position.axes.size(); ++i) {
        Append(image, static_cast<std::int32_t>(std::llround(position.axes[i] * UnitsOf(position.coordinateType, i))));
    }
    return image;
}

PositionData PositionOf(WireImage const& image) {
    auto const word = [&](std::size_t index) { return ValueAt<std::int32_t>(image, index * sizeof(std::int32_t)); };
    FigureFlags flags{};
    for (std::size_t i = 0; i < flags.size(); ++i) {
        flags[i] = i < FirstWordFlags ? word(1) >> i & 1 : word(4) >> (i - FirstWordFlags) & 1;
    }
    PositionData position{.coordinateType = static_cast<CoordinateType>(word(0)),
                          .figure = FigureOf(flags),
                          .toolNumber = word(2),
                          .userCoordinateNumber = word(3)};
    for (std::size_t i = 0; i < position.axes.size(); ++i) {
        position.axes[i] = word(HeadWords + i) / UnitsOf(position.coordinateType, i);
    }
    return position;
}

} // namespace harvlink::soak
