#pragma once

#include <vector>

#include "soak/ValueKind.h"
#include "soak/Worker.h"

namespace harvlink::soak {

/// Writes variables, signals and registers of all kinds, and reads back what it has written.
class ValuesWorker final : public Worker {
public:
    ValuesWorker(std::string name, Options const& options, Results& results, std::uint64_t seed, Journals journals,
                 std::vector<ValueKind> kinds);

private:
    struct Cell {
        WireImage value;
        SteadyClock::time_point written;
    };

    void Step() override;
    void Recover() override;
    void Write(ValueKind const& kind, unsigned index, Cell& cell);
    void Check(ValueKind const& kind, unsigned index, Cell const& cell);
    void FindOut(bool mayBeLost);

    std::vector<ValueKind> kinds_;
    std::vector<std::vector<Cell>> cells_; ///< by kind and index
    std::size_t lastKind_ = 0; ///< of the last step, with its index and what may be there now
    unsigned lastIndex_ = 0;
    WireImage lastBefore_;
    WireImage lastWanted_;
};

} // namespace harvlink::soak
