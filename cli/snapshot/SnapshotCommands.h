#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {
class Session;

void AddSnapshotCommands(CLI::App& app, Session& session);
} // namespace harvlink::cli

namespace harvlink::cli::snapshot {

void AddSave(CLI::App& family, Session& session);
void AddDiff(CLI::App& family, Session& session);
void AddShow(CLI::App& family, Session& session);
void AddRestore(CLI::App& family, Session& session);

} // namespace harvlink::cli::snapshot
