#pragma once

#include <vector>

#include "soak/ValueKind.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Writes variables, signals and registers of all kinds, and reads back what it has written.
class ValuesWorker final : public Worker {
public:
    ValuesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed,
                 std::vector<ValueKind> kinds);

private:
    struct Cell {
        WireImage value;
        SteadyClock::time_point written;
    };

    void Step() override;
    void Write(ValueKind const& kind, unsigned index, Cell& cell);
    void Check(ValueKind const& kind, unsigned index, Cell const& cell);
    Answer Read(ValueKind const& kind, unsigned index, WireImage& got);
    Answer Compare(ValueKind const& kind, WireImage const& before, WireImage const& wanted, WireImage const& got) const;

    std::vector<ValueKind> kinds_;
    std::vector<std::vector<Cell>> cells_; ///< by kind and index
};

} // namespace harvlink::soak
