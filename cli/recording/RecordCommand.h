#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

void AddRecordCommand(CLI::App& app, Session& session);

} // namespace harvlink::cli
