#include "Operations.h"

// The replies to every operation and to the opening of a connection. Input: operation, generation, arguments, answers.

namespace harvlink::fuzz {

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    auto const number = input.Take<std::uint8_t>();
    auto const generation = input.Take<std::uint8_t>();
    auto const with = input.Take<Arguments>();
    auto answers = TakeAnswers(input);
    if (number >= Operations().size()) {
        Session session(generation, std::move(answers));
        if (session.status.StatusCode == 0) {
            session.RequireUsable();
        }
        return 0;
    }
    auto const& operation = Operations()[number];
    Session session(generation);
    Require(session.status.StatusCode == 0, "a connection to a correct controller opens");
    session.SetAnswers(std::move(answers));
    operation.run(session, with);
    if (!operation.leavesThread) {
        session.RequireUsable();
    }
    return 0;
}

} // namespace harvlink::fuzz
