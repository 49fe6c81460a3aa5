#include <filesystem>
#include <fstream>
#include <iterator>

#include "FuzzedConnection.h"
#include "harvlink/FileInterface.h"

// The blocks of file transfers. The first byte selects the direction: a text or a file of this computer goes to a correct
// controller and comes back, while answers get lost; or the controller sends blocks that the input defines.

namespace harvlink::fuzz {
namespace {

struct Folder {
    Folder() {
        auto name = (std::filesystem::temp_directory_path() / "harvlink-fuzz-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() { std::filesystem::remove_all(path); }

    std::filesystem::path path;
};

void LoadAndSave(FuzzedConnection& connection, Input& input, bool isOnDisk) {
    static Folder const folder;
    std::string const loadPath = folder.path / "FUZZ.DAT";
    std::string const savePath = folder.path / "saved";
    connection.transport->losses = input.Take<std::uint32_t>();
    std::string const text(input.TakeText());
    auto& files = *connection.robot.Files;
    std::string saved;
    StatusInfo loading;
    StatusInfo saving;
    if (isOnDisk) {
        std::ofstream(loadPath, std::ios::binary) << text;
        loading = files.LoadToControllerFromPath(loadPath);
        saving = files.SaveFromControllerToFile("FUZZ.DAT", savePath, true);
        std::ifstream stream(savePath, std::ios::binary);
        saved.assign(std::istreambuf_iterator<char>(stream), {});
    } else {
        loading = files.LoadToControllerFromString("FUZZ.DAT", text);
        saving = files.SaveFromControllerToString("FUZZ.DAT", saved);
    }
    bool const isWhole = loading.StatusCode == 0 && saving.StatusCode == 0;
    if (isWhole && !text.empty() && text.find('\0') == std::string::npos) {
        Require(saved == text, "the saved text equals the loaded one");
    }
}

/// The result that the client must get from the blocks up to the last one or the first failure.
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
        bool const isGood = subHeader.status == 0 && (subHeader.addedStatusSize == 0 || subHeader.addedStatus == 0);
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

void SaveHostile(FuzzedConnection& connection, Input& input) {
    Answers answers;
    auto const expected = TakeBlocks(input, answers);
    connection.SetAnswers(answers);
    std::string text = "old";
    bool const isSaved = connection.robot.Files->SaveFromControllerToString("FUZZ.DAT", text).StatusCode == 0;
    Require(isSaved == expected.isWhole, "a file is saved if its last block arrived");
    Require(text == expected.text, "the text of all blocks that arrived");
    auto const& sent = connection.transport->sent;
    for (std::size_t i = 1; i < sent.size(); ++i) {
        auto const offset = offsetof(CommonHeader, blockNumber);
        Require(std::equal(sent[i].begin() + offset, sent[i].begin() + offset + sizeof(std::uint32_t),
                           answers.at(i - 1).bytes.begin() + offset),
                "each block is acknowledged with its number");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    FuzzedConnection connection(3);
    auto const direction = input.Take<std::uint8_t>() % 3;
    if (direction < 2) {
        LoadAndSave(connection, input, direction == 1);
    } else {
        SaveHostile(connection, input);
    }
    connection.RequireUsable();
    return 0;
}

} // namespace harvlink::fuzz
