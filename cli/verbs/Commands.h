#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

// Each adds one family of commands. It has the name of the library's interface that it uses.
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

/// Words that are only known when they are asked for: cells, jobs, trajectories. For the scripts of the command completion.
void AddCompleteWords(CLI::App& app, Session& session);

} // namespace harvlink::cli
