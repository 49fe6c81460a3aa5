#pragma once

namespace CLI {
class App;
}

namespace harvlink::cli {

class Session;

void AddDoctorCommand(CLI::App& app, Session& session);

} // namespace harvlink::cli
