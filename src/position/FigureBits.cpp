#include "position/FigureBits.h"

#include <cstddef>

namespace harvlink {

// On purpose not FigureToBitsets: here a field goes out with its whole value, not as one bit.
std::uint32_t FigureWord(Figure const& figure) {
    auto const shifted = [](auto field, unsigned bit) { return static_cast<std::uint32_t>(field) << bit; };
    return shifted(figure.frontOrBack, 0) | shifted(figure.upperOrLower, 1) | shifted(figure.flipOrNoFlip, 2) |
           shifted(figure.rAngle, 3) | shifted(figure.tAngle, 4) | shifted(figure.sAngle, 5);
}

namespace HelperFunction {
namespace {

template <typename Field>
void FromBit(Field& field, std::bitset<8> const& bits, std::size_t bit) {
    field = static_cast<Field>(bits[bit]);
}

template <typename Field>
void ToBit(Field field, std::bitset<8>& bits, std::size_t bit) {
    bits[bit] = static_cast<std::int32_t>(field) != 0;
}

} // namespace

Figure BitsetToFigure(std::bitset<8> figure, std::bitset<8> extendedFigure) {
    Figure result;
    FromBit(result.frontOrBack, figure, 0);
    FromBit(result.upperOrLower, figure, 1);
    FromBit(result.flipOrNoFlip, figure, 2);
    FromBit(result.rAngle, figure, 3);
    FromBit(result.tAngle, figure, 4);
    FromBit(result.sAngle, figure, 5);
    FromBit(result.lAngle, extendedFigure, 0);
    FromBit(result.uAngle, extendedFigure, 1);
    FromBit(result.bAngle, extendedFigure, 2);
    FromBit(result.eAngle, extendedFigure, 3);
    FromBit(result.wAngle, extendedFigure, 4);
    return result;
}

void FigureToBitsets(Figure const& figure, std::bitset<8>& figureBits, std::bitset<8>& extendedFigureBits) {
    ToBit(figure.frontOrBack, figureBits, 0);
    ToBit(figure.upperOrLower, figureBits, 1);
    ToBit(figure.flipOrNoFlip, figureBits, 2);
    ToBit(figure.rAngle, figureBits, 3);
    ToBit(figure.tAngle, figureBits, 4);
    ToBit(figure.sAngle, figureBits, 5);
    ToBit(figure.lAngle, extendedFigureBits, 0);
    ToBit(figure.uAngle, extendedFigureBits, 1);
    ToBit(figure.bAngle, extendedFigureBits, 2);
    ToBit(figure.eAngle, extendedFigureBits, 3);
    ToBit(figure.wAngle, extendedFigureBits, 4);
}

} // namespace HelperFunction
} // namespace harvlink
