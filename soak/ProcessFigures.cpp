#include "soak/ProcessFigures.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

namespace harvlink::soak {

namespace {

constexpr std::size_t ResidentNoiseKiB = 4096;
constexpr std::size_t HeapNoiseKiB = 256;

std::size_t StatusNumber(std::string const& folder, std::string const& key) {
    std::ifstream file(folder + "/status");
    for (std::string word; file >> word;) {
        if (word == key + ":") {
            std::size_t number = 0;
            file >> number;
            return number;
        }
    }
    return 0;
}

std::size_t CountEntries(std::string const& folder) {
    std::error_code ignored;
    auto const entries = std::filesystem::directory_iterator(folder, ignored);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

ProcessFigures FiguresOf(std::string const& name, pid_t process) {
    auto const folder = fmt::format("/proc/{}", process);
    return {.name = name,
            .residentKiB = StatusNumber(folder, "VmRSS"),
            .descriptors = CountEntries(folder + "/fd"),
            .threads = StatusNumber(folder, "Threads")};
}

ProcessFigures OwnFigures() {
    auto figures = FiguresOf("client", getpid());
    auto const heap = mallinfo2();
    figures.heapKiB = (heap.uordblks + heap.hblkhd) / 1024;
    return figures;
}

std::string Growth(ProcessFigures const& before, ProcessFigures const& after) {
    std::string growth;
    auto const compare = [&](char const* what, std::size_t from, std::size_t to, std::size_t noise) {
        if (to > from + noise) {
            growth += fmt::format("{} of {} grew from {} to {}; ", what, before.name, from, to);
        }
    };
    compare("resident KiB", before.residentKiB, after.residentKiB, ResidentNoiseKiB);
    compare("heap KiB", before.heapKiB, after.heapKiB, HeapNoiseKiB);
    compare("descriptors", before.descriptors, after.descriptors, before.spareDescriptors);
    compare("threads", before.threads, after.threads, 0);
    return growth;
}

} // namespace harvlink::soak
