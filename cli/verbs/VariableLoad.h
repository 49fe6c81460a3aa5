#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

/// Adds "load" to the family of commands for variables.
void AddVariableLoad(CLI::App& family, Session& session);

} // namespace harvlink::cli
