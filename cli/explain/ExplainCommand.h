#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

void AddExplainCommand(CLI::App& app, Session& session);

} // namespace harvlink::cli
