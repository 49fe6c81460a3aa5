#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

void AddConfigCommand(CLI::App& app, Session& session);

} // namespace harvlink::cli
