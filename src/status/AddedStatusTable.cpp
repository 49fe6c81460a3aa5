#include "status/AddedStatusTable.h"

namespace harvlink {
namespace {

constexpr auto rows = SortRows(std::to_array<StatusText<std::int32_t>>({
    {0x50000, "The connection options are not valid."},
    {0x50001, "The access of this connection does not allow this. Nothing was sent."},
    {0x50002,
     "The host answers, but nobody listens on this port. Check the address, and whether the controller's Ethernet "
     "function is on."},
    {0x50003, "The answer is shorter than its record."},
    {0x50004, "A block of the file is missing. Fetch the file again."},
    {0x50005, "The file is larger than the connection accepts."},
    {0x50006, "Out of memory"}, // fits a string's own room: reporting it must not allocate
    {0x50007, "This computer refused a resource, such as a thread or a socket."},
    {0x50008, "The controller's operating time can't be read."},
    {0x50009, "The step was withdrawn before the controller took it."},
    {0x50010, "It did not happen in the given time."},
    {0x50011, "No step of this number was queued, or it is too far back."},
    {0x50012, "The name of the controller could not be resolved."},
    {0x50013, "The fleet can't be watched like this."},
    {0x50014, "The fleet has no controller of this name."},
}));

} // namespace

constexpr StatusTable<std::int32_t> AddedStatusTable{rows};

} // namespace harvlink
