#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

// One family of commands each, named as the interface of the library that it uses.
void AddControllerStateCommands(CLI::App& app, Session& session);
void AddControlGroupCommands(CLI::App& app, Session& session);
void AddVariableCommands(CLI::App& app, Session& session);
void AddIOCommands(CLI::App& app, Session& session);
void AddFileCommands(CLI::App& app, Session& session);
void AddFaultCommands(CLI::App& app, Session& session);
void AddJobCommands(CLI::App& app, Session& session);
void AddControlCommands(CLI::App& app, Session& session);
void AddMotionCommands(CLI::App& app, Session& session);
void AddKinematicsCommands(CLI::App& app, Session& session);

// What several interfaces take part in.
void AddWatchCommand(CLI::App& app, Session& session);
void AddSnapshotCommands(CLI::App& app, Session& session);

// What needs no connection.
void AddCompletionCommand(CLI::App& app, Session& session);
void AddConfigCommand(CLI::App& app, Session& session);
void AddDoctorCommand(CLI::App& app, Session& session);
void AddExplainCommand(CLI::App& app, Session& session);

} // namespace harvlink::cli
