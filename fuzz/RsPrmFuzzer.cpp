#include <sstream>

#include "FuzzedConnection.h"

// The parser of "RS.PRM", compared with a parser made of streams.

namespace harvlink::fuzz {
namespace {

int Rs022Of(std::string const& text) {
    std::istringstream items(text);
    std::string item;
    for (int i = 0; i < 5; ++i) {
        if (!(items >> item)) {
            return -1;
        }
    }
    std::istringstream fields(item);
    std::string field;
    for (int i = 0; i < 3; ++i) {
        if (!std::getline(fields, field, ',')) {
            return -1;
        }
    }
    return field == "1" ? 1 : 0;
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static FuzzedConnection connection(2);
    std::string text(Input(data, size).TakeText());
    std::ranges::replace(text, '\0', ' ');
    connection.SetAnswers(BlocksOf(text));
    Require(connection.robot.GetRS22StateFromFile() == Rs022Of(text), "the third field of the fifth item");
    return 0;
}

} // namespace harvlink::fuzz
