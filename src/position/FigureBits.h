#pragma once

#include <bitset>
#include <cstdint>

#include "harvlink/PositionData.h"

namespace harvlink {

/// Bits 0 to 5 of the wire's figure word. The order of bits differs from the order of fields, on purpose: R, T and S sit
/// in the old six bits, the other axes in the extended figure. A field that is neither 0 nor 1 goes out as it is, shifted.
std::uint32_t FigureWord(Figure const& figure);

namespace HelperFunction {

Figure BitsetToFigure(std::bitset<8> figure, std::bitset<8> extendedFigure);

/// Sets bits 0 to 5 of `figureBits` and bits 0 to 4 of `extendedFigureBits`; the other bits stay.
void FigureToBitsets(Figure const& figure, std::bitset<8>& figureBits, std::bitset<8>& extendedFigureBits);

} // namespace HelperFunction
} // namespace harvlink
