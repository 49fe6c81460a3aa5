#pragma once

#include <cstddef>
#include <fstream>
#include <span>
#include <string>

#include <netinet/in.h>

namespace harvlink::simulator {

/// A recording of datagrams for packet sniffers. Each datagram is in the file when Write returns, so a sniffer can
/// follow the file, and nothing is lost if the program is killed.
class PcapFile {
public:
    /// Throws std::system_error if the file can't be written.
    explicit PcapFile(std::string const& path);

    void Write(sockaddr_in const& from, sockaddr_in const& to, std::span<std::byte const> datagram);

    /// Whether everything has been written so far.
    bool IsWhole() const { return file_.good(); }

private:
    std::ofstream file_;
};

} // namespace harvlink::simulator
