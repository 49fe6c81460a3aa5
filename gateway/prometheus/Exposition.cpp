#include "gateway/prometheus/Exposition.h"

#include <array>

#include "gateway/prometheus/Families.h"
#include "gateway/prometheus/ProcessFigures.h"
#include "harvlink/Version.h"
#include "words/text/Text.h"

namespace harvlink::gateway {

namespace {

/// The labels of a link by its FleetState.
std::array<Labels, 5> const& LinkLabels() {
    static std::array<Labels, 5> const All{{{{"state", "connecting"}},
                                            {{"state", "online"}},
                                            {{"state", "late"}},
                                            {{"state", "silent"}},
                                            {{"state", "refused"}}}};
    return All;
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
            families.SetHistogram(Metric::RoundTrip, controller.controller->name, counts->second);
        }
        AddController(families, controller);
    }
    std::string text = families.Text(lastSize_);
    lastSize_ = text.size();
    std::erase_if(plans_, [](auto const& plan) { return !plan.second.isUsed; });
    return text;
}

Exposition::Plan const& Exposition::PlanOf(ControllerPtr const& controller) {
    auto const [found, isNew] = plans_.try_emplace(controller->id);
    if (isNew) {
        auto series = SeriesOf(*controller);
        bool const isShared = lastSeries_ != nullptr && *lastSeries_ == series;
        if (!isShared) {
            lastSeries_ = std::make_shared<AllSeries const>(std::move(series));
        }
        found->second = {lastSeries_};
    }
    found->second.isUsed = true;
    return found->second;
}

void Exposition::AddLink(Families& families, LatestController const& latest) {
    std::string const& name = latest.controller->name;
    families.Set(Metric::Up, Answers(latest.link) ? 1.0 : 0.0, name);
    families.Set(Metric::LinkState, 1.0, name, LinkLabels().at(static_cast<std::size_t>(latest.link)));
    if (latest.lastAnswer != 0) {
        families.Set(Metric::LastAnswer, static_cast<double>(latest.lastAnswer) / 1e6, name);
    }
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
        for (Series const& series : (*plan.series)[reading]) {
            if (series.item < sample->values.size()) {
                families.Set(series.metric, NumberOf(sample->values[series.item]) * series.factor, name, series.labels);
            }
        }
        for (auto& [metric, labels] : ValueSeries(*sample)) {
            families.SetOnce(metric, 1.0, name, std::move(labels));
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
            Labels poll{{"poll", std::string(polls[group])}};
            families.SetOnce(Metric::Rounds, static_cast<double>(each.groups[group].rounds), each.controller, poll);
            families.SetOnce(Metric::Overruns, static_cast<double>(each.groups[group].overruns), each.controller,
                             std::move(poll));
        }
    }
}

void Exposition::AddGateway(Families& families, FleetStatistics const& statistics) const {
    families.SetOnce(Metric::GatewayInfo, 1.0, "",
                     {{"name", sources_.gateway}, {"version", std::string(HeaderVersion)}});
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
