#include "Session.h"
#include "harvlink/FileInterface.h"

// The blocks by which files move. An even first byte loads a text to an honest controller and fetches it again while
// answers get lost; an odd one fetches a file whose blocks say what the input wants.

using namespace harvlink;
using namespace harvlink::fuzz;

namespace {

void LoadAndSave(Session& session, Input& input) {
    session.transport->losses = input.Take<std::uint32_t>();
    std::string const text(input.TakeText());
    auto& files = *session.robot.Files;
    std::string saved;
    bool const isLoaded = files.LoadToControllerFromString("FUZZ.DAT", text).StatusCode == 0;
    bool const isSaved = files.SaveFromControllerToString("FUZZ.DAT", saved).StatusCode == 0;
    if (isLoaded && isSaved && !text.empty() && text.find('\0') == std::string::npos) {
        Require(saved == text, "what was loaded is what is saved");
    }
}

/// What the client must make of the blocks up to the last one or the first failure.
struct Expected {
    std::string text;
    bool isWhole = false;
};

Expected TakeBlocks(Input& input, Answers& answers) {
    Expected expected;
    bool isOver = false;
    while (!input.IsEmpty()) {
        auto const number = input.Take<std::uint32_t>();
        auto const subHeader = input.Take<SubHeaderForReceiving>();
        auto const bytes = input.TakeBytes(input.Take<std::uint16_t>());
        answers.push_back(Block(number, subHeader, bytes));
        if (isOver) {
            continue;
        }
        bool const isGood = (subHeader.status == 0 && subHeader.addedStatusSize == 0) ||
                            (subHeader.status == 0 && subHeader.addedStatus == 0);
        if (isGood) {
            std::string_view const text(reinterpret_cast<char const*>(bytes.data()),
                                        std::min(bytes.size(), FileBlockSize));
            expected.text += text.substr(0, text.find('\0'));
        }
        expected.isWhole = isGood && (number & LastBlockFlag) != 0;
        isOver = !isGood || expected.isWhole;
    }
    return expected;
}

void SaveHostile(Session& session, Input& input) {
    Answers answers;
    auto const expected = TakeBlocks(input, answers);
    session.Face(answers);
    std::string text = "old";
    bool const isSaved = session.robot.Files->SaveFromControllerToString("FUZZ.DAT", text).StatusCode == 0;
    Require(isSaved == expected.isWhole, "a file is saved if it came to its end");
    Require(text == expected.text, "all of the text that came");
    auto const& sent = session.transport->sent;
    for (std::size_t i = 1; i < sent.size(); ++i) {
        auto const offset = offsetof(CommonHeader, blockNumber);
        Require(std::equal(sent[i].begin() + offset, sent[i].begin() + offset + sizeof(std::uint32_t),
                           answers.at(i - 1).bytes.begin() + offset),
                "each block is acknowledged by its number");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    Session session(3);
    if (input.Take<std::uint8_t>() % 2 == 0) {
        LoadAndSave(session, input);
    } else {
        SaveHostile(session, input);
    }
    session.RequireUsable();
    return 0;
}
