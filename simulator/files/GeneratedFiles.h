#pragma once

#include <span>
#include <string>
#include <string_view>

namespace harvlink::simulator {

class ControllerModel;

/// A file that the controller writes itself, from what it is and knows at the moment of reading.
struct GeneratedFile {
    std::string_view name;
    bool isConfiguration; ///< part of what describes the controller; the others show what happened to it
    std::string (*text)(ControllerModel const& model);
};

/// Sorted by name. All lines end in CR LF.
///
/// - ALARM.LOG: the alarm history, a line per alarm: category, code, sub-code, time, name.
/// - RS.PRM: the RS parameters, ten to a line from RS000 on, behind a line of two words.
/// - SYSTEM.SYS: sections headed by "//": version, model, control groups with servo power, robot names (a line per robot,
///   in the order of the groups, which names the robot's base if it has one), tool and user coordinate counts.
/// - TOOL.CND: a section "//TOOL n" per tool with its name and its frame in mm and degrees.
/// - VAR.DAT: the variables of the kinds B, I, D and R, ten to a line.
std::span<GeneratedFile const> GeneratedFiles();

/// Jobs that a controller has from the start; see Jobs in the language of JobParser.h.
struct SampleJob {
    std::string_view name;
    std::string_view text;
};

std::span<SampleJob const> SampleJobs();

} // namespace harvlink::simulator
