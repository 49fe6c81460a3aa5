#include "support/Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>

#include <nlohmann/json.hpp>

namespace harvlink::bench {
namespace {

nlohmann::json NumberOrNull(double value) {
    return std::isfinite(value) ? nlohmann::json(value) : nlohmann::json();
}

} // namespace

bool Row::IsMet() const {
    if (comparison == "<=") {
        return gated <= target;
    }
    return comparison == ">=" ? gated >= target : gated == target;
}

void Report::Add(Row row) {
    std::printf("%-58s %12.4g %12.4g  %9.4g %s %-7.4g %-6s %s\n", row.name.c_str(), row.floor, row.harvlink, row.gated,
                row.comparison.c_str(), row.target, row.IsMet() ? "met" : "MISSED", row.unit.c_str());
    std::fflush(stdout);
    rows.push_back(std::move(row));
}

bool Report::AllMet() const {
    return std::ranges::all_of(rows, &Row::IsMet);
}

void Report::WriteJson(std::string const& path) const {
    nlohmann::json out{{"rows", nlohmann::json::array()}, {"curves", nlohmann::json::array()}};
    for (Row const& row : rows) {
        out["rows"].push_back({{"case", row.name},
                               {"unit", row.unit},
                               {"floor", NumberOrNull(row.floor)},
                               {"harvlink", NumberOrNull(row.harvlink)},
                               {"gated", row.gated},
                               {"comparison", row.comparison},
                               {"target", row.target},
                               {"met", row.IsMet()},
                               {"note", row.note}});
    }
    for (Curve const& curve : curves) {
        out["curves"].push_back({{"name", curve.name}, {"points", curve.points}});
    }
    std::ofstream(path) << out.dump(2) << '\n';
}

} // namespace harvlink::bench
