// Stands for CaptureFile.cpp where libpcap can't be compiled in.
#include "recording/capture/CaptureFile.h"

namespace harvlink::recording {

void CaptureFile::Close::operator()(pcap* /*handle*/) const {}

CaptureFile::CaptureFile(std::filesystem::path const& path, std::vector<std::uint16_t> /*ports*/) {
    throw RecordingError(path.string() +
                         ": this build of the program can't read captures; the one that is built from the "
                         "sources with libpcap can");
}

bool CaptureFile::Next(CapturedDatagram& /*captured*/) {
    return false;
}

} // namespace harvlink::recording
