#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

/// harvlink recording info, events, export, cut, plot
void AddRecordingCommands(CLI::App& app, Session& session);

namespace recordings {

void AddInfo(CLI::App& family, Session& session);
void AddEvents(CLI::App& family, Session& session);
void AddExport(CLI::App& family, Session& session);
void AddCut(CLI::App& family, Session& session);
void AddPlot(CLI::App& family, Session& session);

} // namespace recordings

} // namespace harvlink::cli
