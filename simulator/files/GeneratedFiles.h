#pragma once

#include <span>
#include <string>
#include <string_view>

namespace harvlink::simulator {

class ControllerModel;

/// A file that the controller generates from its state at the moment of reading.
struct GeneratedFile {
    std::string_view name;
    bool isConfiguration; ///< describes the controller itself; the others show its data and history
    std::string (*text)(ControllerModel const& model);
};

/// Sorted by name. All lines end in CR LF.
///
/// - ALARM.LOG: the alarm history, a line per alarm: category, code, sub-code, time, name.
/// - RS.PRM: a header line, then the RS parameters from RS000 on, ten per line.
/// - SYSTEM.SYS: sections headed by "//": version, model, control groups with servo power, robot names (one line per
///   robot, in the order of the groups, with its base if it has one), numbers of tools and user coordinates.
/// - TOOL.CND: a section "//TOOL n" per tool with its name and its frame in mm and degrees.
/// - VAR.DAT: the variables of the kinds B, I, D and R, ten per line.
std::span<GeneratedFile const> GeneratedFiles();

/// The jobs that a new controller has, in the language of JobParser.h.
struct SampleJob {
    std::string_view name;
    std::string_view text;
};

std::span<SampleJob const> SampleJobs();

} // namespace harvlink::simulator
