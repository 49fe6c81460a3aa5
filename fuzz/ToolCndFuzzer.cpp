#include <iterator>
#include <sstream>

#include "FuzzedConnection.h"

// The parser of "TOOL.CND", compared with a parser made of streams.

namespace harvlink::fuzz {

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static FuzzedConnection connection(3);
    std::string text(Input(data, size).TakeText());
    std::ranges::replace(text, '\0', ' ');
    connection.SetAnswers(BlocksOf(text));
    std::istringstream stream(text);
    auto const tools = std::count(std::istream_iterator<std::string>(stream), {}, "//TOOL");
    Require(connection.robot.GetNumberOfToolFiles() == tools, "one tool for each tool section of the file");
    return 0;
}

} // namespace harvlink::fuzz
