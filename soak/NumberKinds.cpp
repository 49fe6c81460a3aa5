#include <cmath>

#include "soak/ValueKind.h"

namespace harvlink::soak {

namespace {

constexpr unsigned StringCount = 30;
constexpr unsigned RegisterCount = 1000;
constexpr std::size_t TextWidth = 32;

template <typename Value>
WireImage RandomNumber(Random& random) {
    return ImageOf(static_cast<Value>(random()));
}

template <>
WireImage RandomNumber<float>(Random& random) {
    return ImageOf(
        std::ldexp(static_cast<float>(static_cast<std::int32_t>(random())), static_cast<int>(random() % 80) - 60));
}

template <typename Value, typename Interface>
ValueKind Scalars(std::string const& name, Interface& variables) {
    return {.name = name,
            .count = VariableCount,
            .size = sizeof(Value),
            .random = RandomNumber<Value>,
            .write =
                [&variables](unsigned index, WireImage const& image) {
                    return variables.Write({ValueAt<Value>(image), static_cast<std::uint16_t>(index)});
                },
            .read =
                [&variables](unsigned index, WireImage& image) {
                    ScalarVariableData<Value> variable;
                    auto status = variables.Read(static_cast<std::uint16_t>(index), variable);
                    image = ImageOf(variable.value);
                    return status;
                }};
}

/// The length from the header of the reply, and the text in its field.
WireImage ImageOfText(std::string const& text) {
    auto image = ImageOf(static_cast<std::uint16_t>(text.size()));
    AppendText(image, text, TextWidth);
    return image;
}

ValueKind Strings(StringVariableInterface& variables) {
    return {.name = "S",
            .count = StringCount,
            .size = sizeof(std::uint16_t) + TextWidth,
            .random =
                [](Random& random) {
                    std::string text(random() % (TextWidth + 1), '\0');
                    for (auto& character : text) {
                        character = static_cast<char>(random() % 255 + 1);
                    }
                    return ImageOfText(text);
                },
            .write =
                [&variables](unsigned index, WireImage const& image) {
                    auto const begin = image.begin() + sizeof(std::uint16_t);
                    return variables.Write(
                        {std::string(begin, begin + ValueAt<std::uint16_t>(image)), static_cast<std::uint16_t>(index)});
                },
            .read =
                [&variables](unsigned index, WireImage& image) {
                    StringVariableData variable;
                    auto status = variables.Read(static_cast<std::uint16_t>(index), variable);
                    image = ImageOfText(variable.value);
                    return status;
                }};
}

ValueKind Registers(IOInterface& signals) {
    return {.name = "register",
            .family = Family::IO,
            .count = RegisterCount,
            .size = sizeof(std::uint16_t),
            .random = RandomNumber<std::uint16_t>,
            .write =
                [&signals](unsigned index, WireImage const& image) {
                    return signals.WriteRegister(static_cast<std::uint16_t>(index), ValueAt<std::uint16_t>(image));
                },
            .read =
                [&signals](unsigned index, WireImage& image) {
                    std::uint16_t value = 0;
                    auto status = signals.ReadRegister(static_cast<std::uint16_t>(index), value);
                    image = ImageOf(value);
                    return status;
                }};
}

} // namespace

std::vector<ValueKind> NumberKinds(QuorvanController& robot) {
    auto& variables = *robot.Variables;
    return {Scalars<std::uint8_t>("B", *variables.byteVariable),
            Scalars<std::int16_t>("I", *variables.integerVariable),
            Scalars<std::int32_t>("D", *variables.doubleIntVariable),
            Scalars<float>("R", *variables.realVariable),
            Strings(*variables.stringVariable),
            Registers(*robot.IO)};
}

} // namespace harvlink::soak
