#include "recording/forward/ForwardState.h"

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include <zlib.h>

#include "recording/forward/FileDescriptor.h"

namespace harvlink::recording {

namespace {

struct Copy {
    std::uint64_t checkSum = 0; ///< of what follows
    std::uint64_t generation = 0;
    ForwardState state;
};
static_assert(sizeof(Copy) == 56);

constexpr std::size_t Distance = 4096; // the two lie in different blocks of the disk

std::uint64_t CheckSum(Copy const& copy) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&copy);
    return crc32(0, bytes + sizeof(copy.checkSum), sizeof(copy) - sizeof(copy.checkSum));
}

} // namespace

std::optional<ForwardState> ForwardStateFile::Load() {
    std::ifstream file(path_, std::ios::binary);
    std::string const content{std::istreambuf_iterator<char>(file), {}};
    std::optional<ForwardState> newest;
    for (std::size_t const place : {std::size_t{0}, Distance}) {
        Copy copy;
        if (content.size() < place + sizeof(copy)) {
            continue;
        }
        std::memcpy(&copy, content.data() + place, sizeof(copy));
        if (copy.checkSum == CheckSum(copy) && copy.generation > generation_) {
            newest = copy.state;
            generation_ = copy.generation;
        }
    }
    return newest;
}

int ForwardStateFile::Store(ForwardState const& state) {
    Copy copy{.generation = ++generation_, .state = state};
    copy.checkSum = CheckSum(copy);
    std::string_view const bytes(reinterpret_cast<char const*>(&copy), sizeof(copy));
    FileDescriptor const file(path_);
    int const error = file.WriteAt(0, bytes); // is on the disk before the other is touched
    return error != 0 ? error : file.WriteAt(Distance, bytes);
}

} // namespace harvlink::recording
