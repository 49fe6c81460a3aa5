#pragma once

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace harvlink::bench {

/// One line of the table. Figures that a case does not have are NaN.
struct Row {
    std::string name;
    std::string unit;
    double floor = std::numeric_limits<double>::quiet_NaN();
    double harvlink = std::numeric_limits<double>::quiet_NaN();
    double gated = 0.0; ///< what is held against the target: a ratio, or the figure itself
    std::string comparison; ///< "<=", ">=" or "=="
    double target = 0.0;
    std::string note;

    bool IsMet() const;
};

/// A curve of cost against size, for the plot.
struct Curve {
    std::string name;
    std::vector<std::pair<double, double>> points; ///< size, seconds
};

class Report {
public:
    void Add(Row row);
    void Add(Curve curve) { curves.push_back(std::move(curve)); }
    bool AllMet() const;
    void WriteJson(std::string const& path) const;

private:
    std::vector<Row> rows;
    std::vector<Curve> curves;
};

} // namespace harvlink::bench
