#include "recording/read/CsvExport.h"

#include <optional>

#include "recording/read/CsvRows.h"
#include "recording/read/KnownState.h"

namespace harvlink::recording {

namespace {

constexpr std::string_view QualityNames[] = {"good", "refused", "stale", "never-read"};

class Export {
public:
    Export(Recording& recording, CsvOptions const& options, std::ostream& out)
        : recording_(recording),
          options_(options),
          out_(out),
          rows_(out, options.decimalComma),
          known_(recording.Contents()) {
        for (std::uint32_t const reading : options.readings) {
            isWanted_.at(reading) = true;
        }
        MakeCells();
        WriteHeader(out);
    }

    std::uint64_t Run() {
        bool const hasGrid = options_.every.count() > 0;
        recording_.ForEachChange(options_.range, true, [&](Change const& change) {
            if (!IsWanted(change.reading)) {
                return true;
            }
            hasGrid ? UseOnGrid(change) : UseAtOnce(change);
            return !out_.fail();
        });
        if (hasGrid) {
            FinishGrid();
        } else {
            WritePending();
        }
        rows_.Flush();
        return rows_.Count();
    }

private:
    bool IsWanted(std::uint32_t reading) const { return isWanted_[reading]; }

    std::vector<RecordedReading> const& Readings() const { return recording_.Contents().readings; }

    /// The cells of a row of the long form between time and value, which never change.
    void MakeCells() {
        for (RecordedReading const& reading : Readings()) {
            auto& cells = cells_.emplace_back();
            for (RecordedItem const& item : reading.items) {
                cells.push_back(rows_.MakeCell(recording_.Contents().controllers[reading.controller - 1].name) +
                                rows_.MakeCell(NameOf(reading, item)) + rows_.MakeCell(item.unit));
            }
        }
    }

    static std::string NameOf(RecordedReading const& reading, RecordedItem const& item) {
        return item.field.empty() ? reading.name : reading.name + "." + item.field;
    }

    void WriteHeader(std::ostream& out) {
        std::string header = "time" + rows_.MakeCell("seconds");
        if (!options_.wide) {
            for (char const* const name : {"controller", "item", "unit", "value", "quality"}) {
                header += rows_.MakeCell(name);
            }
        } else {
            ForEachItem([&](RecordedReading const& reading, std::size_t place) {
                RecordedItem const& item = reading.items[place];
                header += rows_.MakeCell(recording_.Contents().controllers[reading.controller - 1].name + " " +
                                         NameOf(reading, item) + (item.unit.empty() ? "" : " [" + item.unit + "]"));
            });
        }
        out << header << '\n';
    }

    template <typename Use>
    void ForEachItem(Use const& use) const {
        for (std::uint32_t id = 1; id <= Readings().size(); ++id) {
            for (std::size_t place = 0; IsWanted(id) && place < Readings()[id - 1].items.size(); ++place) {
                use(Readings()[id - 1], place);
            }
        }
    }

    void UseAtOnce(Change const& change) {
        bool const isInRange = change.moment.answer >= options_.range.begin;
        if (!options_.wide) {
            // What is known at the start is part of the picture; after that, pictures say nothing new.
            if (isInRange && (!change.isPicture || !isOpen_[change.reading])) {
                isOpen_[change.reading] = true;
                WriteLong(change);
            }
            return;
        }
        if (pending_ && *pending_ != change.moment.answer) {
            WritePending();
        }
        known_.Apply(change);
        if (isInRange && (!change.isPicture || rows_.Count() == 0)) {
            pending_ = change.moment.answer;
        }
    }

    void WriteLong(Change const& change) {
        if (change.moment.quality != RecordedQuality::Good) {
            for (std::size_t place = 0; place < cells_[change.reading - 1].size(); ++place) {
                WriteLongRow(change.moment.answer, change, place, {});
            }
        }
        for (auto const& [place, value] : change.values) {
            WriteLongRow(change.moment.answer, change, static_cast<std::size_t>(place), value);
        }
    }

    void WriteLongRow(Microseconds time, Change const& change, std::size_t place, RecordedValue const& value) {
        rows_.Begin(time);
        rows_.Raw(cells_[change.reading - 1][place]);
        rows_.Value(value);
        rows_.Cell(QualityNames[static_cast<std::size_t>(change.moment.quality)]);
        rows_.End();
    }

    void WritePending() {
        if (pending_) {
            WriteWide(*pending_);
            pending_.reset();
        }
    }

    void WriteWide(Microseconds time) {
        rows_.Begin(time);
        for (RecordedSample const& sample : known_.Samples()) {
            for (std::size_t place = 0; IsWanted(sample.reading) && place < sample.values.size(); ++place) {
                sample.moment.quality == RecordedQuality::Good ? rows_.Value(sample.values[place]) : rows_.Empty();
            }
        }
        rows_.End();
    }

    void UseOnGrid(Change const& change) {
        Microseconds const time = change.moment.answer;
        if (!nextTick_) {
            nextTick_ = std::max(time, options_.range.begin);
        }
        last_ = std::max(last_, time);
        while (*nextTick_ < time) {
            WriteTick();
        }
        known_.Apply(change);
    }

    void FinishGrid() {
        while (nextTick_ && *nextTick_ <= last_) {
            WriteTick();
        }
    }

    void WriteTick() {
        Microseconds const time = *nextTick_;
        nextTick_ = time + options_.every.count();
        if (options_.wide) {
            WriteWide(time);
            return;
        }
        for (RecordedSample const& sample : known_.Samples()) {
            if (!IsWanted(sample.reading) || sample.moment.quality == RecordedQuality::NeverRead) {
                continue;
            }
            bool const isGood = sample.moment.quality == RecordedQuality::Good;
            Change change;
            change.reading = sample.reading;
            change.moment = sample.moment;
            for (std::size_t place = 0; place < sample.values.size(); ++place) {
                WriteLongRow(time, change, place, isGood ? sample.values[place] : RecordedValue());
            }
        }
    }

    Recording& recording_;
    CsvOptions const& options_;
    std::ostream& out_;
    CsvRows rows_;
    KnownState known_;
    std::vector<std::vector<std::string>> cells_; ///< by reading and place
    std::vector<bool> isWanted_ = std::vector<bool>(Readings().size() + 1, options_.readings.empty());
    std::vector<bool> isOpen_ = std::vector<bool>(Readings().size() + 1);
    std::optional<Microseconds> pending_;
    std::optional<Microseconds> nextTick_;
    Microseconds last_ = std::numeric_limits<Microseconds>::min();
};

} // namespace

std::uint64_t ExportCsv(Recording& recording, CsvOptions const& options, std::ostream& out) {
    return Export(recording, options, out).Run();
}

} // namespace harvlink::recording
