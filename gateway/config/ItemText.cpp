#include "gateway/config/ItemText.h"

#include <string>
#include <vector>

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Text.h"
#include "words/values/PositionText.h"
#include "words/values/SignalText.h"
#include "words/values/VariableText.h"

namespace harvlink::gateway {

namespace {

using words::InputError;

/// The words of an item, taken one after the other.
class Words {
public:
    explicit Words(std::string_view text) {
        for (std::string_view const word : words::Split(text, ' ')) {
            if (!word.empty()) {
                words_.push_back(words::LowerCase(word));
            }
        }
    }

    bool Take(std::string_view expected) {
        if (place_ < words_.size() && words_[place_] == expected) {
            ++place_;
            return true;
        }
        return false;
    }

    bool IsAtEnd() const { return place_ == words_.size(); }

    std::string Next(std::string_view what) {
        if (IsAtEnd()) {
            throw InputError(fmt::format("{} is missing", what));
        }
        return words_[place_++];
    }

    template <typename Number>
    Number NextNumber(std::string_view what) {
        return words::ParseNumber<Number>(Next(what), what);
    }

private:
    std::vector<std::string> words_;
    std::size_t place_ = 0;
};

/// "3", "3..7": the first, and how many.
void TakeRow(FleetItem& item, std::string const& text, std::string_view what) {
    std::size_t const dots = text.find("..");
    item.index = words::ParseNumber<std::uint16_t>(text.substr(0, dots), what);
    if (dots != std::string::npos) {
        auto const last = words::ParseNumber<std::uint16_t>(text.substr(dots + 2), what);
        if (last < item.index) {
            throw InputError(fmt::format("'{}' is not a range such as 3..7", text));
        }
        item.count = last - item.index + 1;
    }
}

FleetItem Signals(std::string const& text) {
    auto const names = words::ParseSignalRange(text);
    if (!names.front().address) {
        throw InputError(fmt::format("'{}': a signal is named by its address here, such as 10010", text));
    }
    return FleetItem::Signal(*names.front().address, static_cast<std::uint32_t>(names.size()));
}

FleetItem Position(Words& words) {
    if (words.Take("error")) {
        return FleetItem::PositionError(words::ParseGroup(words.Next("the control group")));
    }
    FleetItem item = FleetItem::Position(words::ParseGroup(words.Next("the control group")));
    words::Coordinate const coordinate = words::ParseCoordinate(words.Next("the coordinate system"));
    item.coordinate = coordinate.type;
    item.userCoordinateNumber = static_cast<std::uint8_t>(coordinate.userNumber);
    if (words.Take("tool")) {
        item.toolNumber = words.NextNumber<std::uint8_t>("the number of the tool");
    }
    return item;
}

FleetItem Time(Words& words) {
    auto const type = static_cast<TimeType>(words.NextNumber<std::int32_t>("the number of the operating time"));
    if (words.Take("application")) {
        auto const application = static_cast<ApplicationNumber>(words.NextNumber<std::int32_t>("the application"));
        return FleetItem::OperatingTime(type, ControlGroupId::R1, application);
    }
    return words.IsAtEnd() ? FleetItem::OperatingTime(type)
                           : FleetItem::OperatingTime(type, words::ParseGroup(words.Next("the control group")));
}

FleetItem Variables(std::string const& text) {
    auto const addresses = words::ParseVariableRange(text);
    auto const kind = static_cast<int>(FleetItemKind::ByteVariable) + static_cast<int>(addresses.front().kind);
    return FleetItem::Variable(static_cast<FleetItemKind>(kind), addresses.front().index,
                               static_cast<std::uint32_t>(addresses.size()));
}

FleetItem Numbered(Words& words, FleetItem (*make)(std::uint32_t), std::string_view what) {
    FleetItem item = make(0);
    item.index = words.NextNumber<std::uint32_t>(what);
    return item;
}

FleetItem Start(Words& words) {
    if (words.Take("state")) {
        return FleetItem::State();
    }
    if (words.Take("alarms")) {
        return FleetItem::Alarms();
    }
    if (words.Take("job")) {
        FleetItem item = FleetItem::Job();
        item.index = words.IsAtEnd() ? 0 : words.NextNumber<std::uint32_t>("the number of the task");
        return item;
    }
    if (words.Take("position")) {
        return Position(words);
    }
    if (words.Take("torque")) {
        return FleetItem::Torque(words::ParseGroup(words.Next("the control group")));
    }
    if (words.Take("signal")) {
        if (words.Take("group")) {
            return Numbered(
                words, [](std::uint32_t index) { return FleetItem::SignalGroup(index); }, "the address of the group");
        }
        return Signals(words.Next("the address of the signal"));
    }
    if (words.Take("register")) {
        FleetItem item = FleetItem::Register(0);
        TakeRow(item, words.Next("the number of the register"), "number of a register");
        return item;
    }
    if (words.Take("software")) {
        FleetItem item = FleetItem::Software();
        item.index = words.IsAtEnd() ? item.index : words.NextNumber<std::uint32_t>("the number of the part");
        return item;
    }
    if (words.Take("time")) {
        words.Take("count"); // as the library writes it
        return Time(words);
    }
    if (words.Take("progress")) {
        return Numbered(
            words, [](std::uint32_t index) { return FleetItem::TargetProgress(index); },
            "the number of the motion slot");
    }
    return Variables(words.Next("an item"));
}

} // namespace

FleetItem ParseItem(std::string_view text) {
    try {
        Words words(text);
        FleetItem item = Start(words);
        if (words.Take("axis")) {
            item.axis = words.NextNumber<std::int32_t>("the number of the axis");
        }
        if (words.Take("x")) {
            item.count = words.NextNumber<std::uint16_t>("the number of items");
        }
        if (!words.IsAtEnd()) {
            throw InputError(fmt::format("'{}' does not belong there", words.Next("")));
        }
        return item;
    } catch (InputError const& error) {
        throw InputError(fmt::format("'{}' is not an item: {}; items are: {}", text, error.what(), ItemHelp));
    }
}

} // namespace harvlink::gateway
