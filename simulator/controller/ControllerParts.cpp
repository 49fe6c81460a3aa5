#include "simulator/controller/ControllerParts.h"

#include "simulator/jobs/JobParser.h"

namespace harvlink::simulator {

ControllerParts::ControllerParts(ControllerOptions const& options, Clock const& clock)
    : model(options.generation, options.rs022, options.groups, options.toolCount, clock),
      files(model, options.filesFolder, CheckJobText),
      jobs(model, files),
      motion(model) {}

void ControllerParts::Tick() {
    auto const now = model.clock.Now();
    jobs.Tick(now);
    motion.Tick(now);
    model.UpdateTimes();
}

} // namespace harvlink::simulator
