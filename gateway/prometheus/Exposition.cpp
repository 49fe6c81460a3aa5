#include "gateway/prometheus/Exposition.h"

#include <array>
#include <sstream>
#include <unordered_map>

#include <prometheus/text_serializer.h>

#include "gateway/prometheus/ProcessFigures.h"
#include "harvlink/Version.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

constexpr std::array<std::string_view, 5> LinkStates{"connecting", "online", "late", "silent", "refused"};

prometheus::MetricType TypeOf(MetricKind kind) {
    switch (kind) {
    case MetricKind::Counter:
        return prometheus::MetricType::Counter;
    case MetricKind::Histogram:
        return prometheus::MetricType::Histogram;
    default:
        return prometheus::MetricType::Gauge;
    }
}

double NumberOf(recording::RecordedValue const& value) {
    if (auto const* const integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    auto const* const real = std::get_if<double>(&value);
    return real == nullptr ? 0.0 : *real;
}

bool Answers(FleetState link) {
    return link == FleetState::Online || link == FleetState::Late;
}

} // namespace

/// The metrics of one answer, as the serialiser takes them.
class Exposition::Families {
public:
    explicit Families(std::size_t most) : most_(most), families_(Definitions().size()) {
        for (std::size_t i = 0; i < families_.size(); ++i) {
            MetricDefinition const& definition = Definitions()[i];
            families_[i] = {std::string(definition.name), std::string(definition.help), TypeOf(definition.kind), {}};
        }
    }

    /// Null if there are too many series already.
    prometheus::ClientMetric* Add(Metric metric, std::string const& controller, Labels const& labels = {}) {
        prometheus::ClientMetric* const added = AddTo(families_[static_cast<std::size_t>(metric)], 1);
        if (added != nullptr) {
            added->label.reserve(labels.size() + 1);
            if (!controller.empty()) {
                added->label.push_back({"controller", controller});
            }
            for (auto const& [name, value] : labels) {
                added->label.push_back({name, value});
            }
        }
        return added;
    }

    void Set(Metric metric, double value, std::string const& controller = {}, Labels const& labels = {}) {
        if (auto* const added = Add(metric, controller, labels); added != nullptr) {
            bool const isCounter = DefinitionOf(metric).kind == MetricKind::Counter;
            (isCounter ? added->counter.value : added->gauge.value) = value;
        }
    }

    void SetHistogram(std::string const& controller, RoundTrips::Counts const& counts) {
        auto* const added = Add(Metric::RoundTrip, controller);
        if (added == nullptr) {
            return;
        }
        series_ += RoundTrips::Bounds.size() + 2; // what it becomes besides one
        added->histogram.sample_count = counts.count;
        added->histogram.sample_sum = counts.sum;
        std::uint64_t below = 0;
        for (std::size_t i = 0; i < RoundTrips::Bounds.size(); ++i) {
            below += counts.buckets.at(i);
            added->histogram.bucket.push_back({below, RoundTrips::Bounds.at(i)});
        }
    }

    void Set(Figure const& figure) {
        auto const [found, isNew] = figures_.try_emplace(figure.name, families_.size());
        bool const isCounter = figure.name.ends_with("_total");
        if (isNew) {
            families_.push_back(
                {figure.name, figure.help, TypeOf(isCounter ? MetricKind::Counter : MetricKind::Gauge), {}});
        }
        if (auto* const added = AddTo(families_[found->second], 1); added != nullptr) {
            for (auto const& [name, value] : figure.labels) {
                added->label.push_back({name, value});
            }
            (isCounter ? added->counter.value : added->gauge.value) = figure.value;
        }
    }

    std::string Text() {
        Set(Metric::DroppedSeries, static_cast<double>(dropped_));
        std::erase_if(families_, [](auto const& family) { return family.metric.empty(); });
        std::ostringstream out;
        prometheus::TextSerializer().Serialize(out, families_);
        return std::move(out).str();
    }

private:
    prometheus::ClientMetric* AddTo(prometheus::MetricFamily& family, std::size_t count) {
        // The count of what is missing must not be missing itself.
        if (series_ >= most_ && family.name != DefinitionOf(Metric::DroppedSeries).name) {
            dropped_ += count;
            return nullptr;
        }
        series_ += count;
        return &family.metric.emplace_back();
    }

    std::size_t most_;
    std::size_t series_ = 0;
    std::size_t dropped_ = 0;
    std::vector<prometheus::MetricFamily> families_; ///< by Metric, then those of figures
    std::unordered_map<std::string, std::size_t> figures_;
};

Exposition::Exposition(ExpositionSources sources, std::size_t mostSeries)
    : sources_(std::move(sources)), mostSeries_(mostSeries) {
    ReadProcessFigures(); // notes the time of the start
}

void Exposition::SetMostSeries(std::size_t mostSeries) {
    std::scoped_lock const lock(mutex_);
    mostSeries_ = mostSeries;
}

std::string Exposition::Text() {
    auto const latest = sources_.latest();
    auto const statistics = sources_.statistics();
    auto const roundTrips = sources_.roundTrips();
    std::scoped_lock const lock(mutex_);
    Families families(mostSeries_);
    AddGateway(families, statistics);
    for (auto& [id, plan] : plans_) {
        plan.isUsed = false;
    }
    // First what says whether the values can be relied on, so that a limit takes the values.
    std::map<std::string, ControllerPtr> controllers;
    for (LatestController const& controller : latest) {
        controllers[controller.controller->name] = controller.controller;
        AddLink(families, controller);
    }
    AddStatistics(families, statistics, controllers);
    for (LatestController const& controller : latest) {
        if (auto const counts = roundTrips.find(controller.controller->id); counts != roundTrips.end()) {
            AddRoundTrips(families, controller, counts->second);
        }
        AddController(families, controller);
    }
    std::erase_if(plans_, [](auto const& plan) { return !plan.second.isUsed; });
    return families.Text();
}

Exposition::Plan const& Exposition::PlanOf(ControllerPtr const& controller) {
    auto const [found, isNew] = plans_.try_emplace(controller->id);
    if (isNew) {
        found->second = {controller, SeriesOf(*controller)};
    }
    found->second.isUsed = true;
    return found->second;
}

void Exposition::AddLink(Families& families, LatestController const& latest) {
    std::string const& name = latest.controller->name;
    families.Set(Metric::Up, Answers(latest.link) ? 1.0 : 0.0, name);
    families.Set(Metric::LinkState, 1.0, name,
                 {{"state", std::string(LinkStates.at(static_cast<std::size_t>(latest.link)))}});
    if (latest.lastAnswer != 0) {
        families.Set(Metric::LastAnswer, static_cast<double>(latest.lastAnswer) / 1e6, name);
    }
}

void Exposition::AddRoundTrips(Families& families, LatestController const& latest, RoundTrips::Counts const& counts) {
    families.SetHistogram(latest.controller->name, counts);
}

void Exposition::AddController(Families& families, LatestController const& latest) {
    Plan const& plan = PlanOf(latest.controller);
    std::string const& name = latest.controller->name;
    for (std::size_t reading = 0; reading < latest.samples.size(); ++reading) {
        SamplePtr const& sample = latest.samples[reading];
        // A value that is not read any more vanishes; one that stays would look as if it still held.
        if (sample == nullptr || sample->moment.quality != recording::RecordedQuality::Good || !Answers(latest.link)) {
            continue;
        }
        for (Series const& series : plan.series[reading]) {
            if (series.item < sample->values.size()) {
                families.Set(series.metric, NumberOf(sample->values[series.item]) * series.factor, name, series.labels);
            }
        }
        for (auto const& [metric, labels] : ValueSeries(*sample)) {
            families.Set(metric, 1.0, name, labels);
        }
    }
}

void Exposition::AddStatistics(Families& families, FleetStatistics const& statistics,
                               std::map<std::string, ControllerPtr> const& controllers) {
    for (FleetControllerStatistics const& each : statistics.controllers) {
        auto const set = [&](Metric metric, std::uint64_t value) {
            families.Set(metric, static_cast<double>(value), each.controller);
        };
        set(Metric::Exchanges, each.exchanges);
        set(Metric::Timeouts, each.timeouts);
        set(Metric::RepeatedRequests, each.repeatedRequests);
        set(Metric::LateAnswers, each.lateAnswers);
        set(Metric::MalformedAnswers, each.malformedAnswers);
        set(Metric::Refused, each.refusals);
        auto const controller = controllers.find(each.controller);
        if (controller == controllers.end()) {
            continue;
        }
        auto const polls = words::Split(controller->second->polls, ' ');
        for (std::size_t group = 0; group < each.groups.size() && group < polls.size(); ++group) {
            Labels const poll{{"poll", std::string(polls[group])}};
            families.Set(Metric::Rounds, static_cast<double>(each.groups[group].rounds), each.controller, poll);
            families.Set(Metric::Overruns, static_cast<double>(each.groups[group].overruns), each.controller, poll);
        }
    }
}

void Exposition::AddGateway(Families& families, FleetStatistics const& statistics) const {
    families.Set(Metric::GatewayInfo, 1.0, "", {{"name", sources_.gateway}, {"version", std::string(HeaderVersion)}});
    families.Set(Metric::Samples, static_cast<double>(sources_.samples()));
    families.Set(Metric::DroppedSamples, static_cast<double>(statistics.droppedSamples));
    families.Set(Metric::DroppedEvents, static_cast<double>(statistics.droppedEvents));
    families.Set(Metric::EnginePauses, static_cast<double>(statistics.pauses));
    ProcessFigures const process = ReadProcessFigures();
    families.Set(Metric::ProcessCpu, process.cpuSeconds);
    families.Set(Metric::ProcessMemory, process.residentBytes);
    families.Set(Metric::ProcessDescriptors, process.openDescriptors);
    families.Set(Metric::ProcessStart, process.startTime);
    for (Figure const& figure : sources_.figures()) {
        families.Set(figure);
    }
}

} // namespace harvlink::gateway
