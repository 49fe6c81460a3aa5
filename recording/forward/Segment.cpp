#include "recording/forward/Segment.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

#include <zlib.h>

#include "recording/forward/FileDescriptor.h"

namespace harvlink::recording {

namespace {

struct Head {
    std::uint32_t magic = 0x45574648; // "HFWE"
    std::uint32_t checkSum = 0; ///< of what follows
    std::uint64_t number = 0;
    std::int64_t time = 0;
    std::uint32_t size = 0; ///< of the content, which follows
    std::uint32_t reserved = 0;
};
static_assert(sizeof(Head) == 32);
constexpr std::size_t CheckedFrom = 8;

std::uint32_t CheckSum(Head const& head, std::string_view content) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&head);
    auto const sum = crc32(0, bytes + CheckedFrom, sizeof(head) - CheckedFrom);
    return static_cast<std::uint32_t>(
        crc32(sum, reinterpret_cast<unsigned char const*>(content.data()), static_cast<unsigned>(content.size())));
}

/// The entry at the start of `bytes`; false if there is none that is whole.
bool Parse(std::string_view bytes, ForwardEntry& entry) {
    Head head;
    Head const expected;
    if (bytes.size() < sizeof(head)) {
        return false;
    }
    std::memcpy(&head, bytes.data(), sizeof(head));
    if (head.magic != expected.magic || head.size > ForwardEntry::MostBytes ||
        head.size > bytes.size() - sizeof(head)) {
        return false;
    }
    auto const content = bytes.substr(sizeof(head), head.size);
    if (CheckSum(head, content) != head.checkSum) {
        return false;
    }
    entry.number = head.number;
    entry.time = head.time;
    entry.content = content;
    return true;
}

} // namespace

std::uint64_t Segment::SizeOf(ForwardEntry const& entry) {
    return sizeof(Head) + entry.content.size();
}

int Segment::Append(std::vector<ForwardEntry> const& entries) {
    std::string written;
    Microseconds latest = newest;
    for (ForwardEntry const& entry : entries) {
        Head head;
        head.number = entry.number;
        head.time = entry.time;
        head.size = static_cast<std::uint32_t>(entry.content.size());
        head.checkSum = CheckSum(head, entry.content);
        written.append(reinterpret_cast<char const*>(&head), sizeof(head));
        written += entry.content;
        latest = std::max(latest, entry.time);
    }
    FileDescriptor const file(path);
    int const error = file.WriteAt(bytes, written);
    if (error != 0) {
        file.CutTo(bytes);
        return error;
    }
    bytes += written.size();
    newest = latest;
    return 0;
}

std::size_t Segment::ForEach(std::string_view content, std::size_t begin,
                             std::function<bool(ForwardEntry const&)> const& use) {
    constexpr std::string_view Magic = "HFWE";
    ForwardEntry entry;
    while (begin < content.size()) {
        if (Parse(content.substr(begin), entry)) {
            begin += SizeOf(entry);
            if (!use(entry)) {
                break;
            }
            continue;
        }
        // Behind damaged bytes the next entry is found by its beginning.
        begin = std::min(content.find(Magic, begin + 1), content.size());
    }
    return begin;
}

std::string Segment::Load() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace harvlink::recording
