#include "cli/verbs/AllCommands.h"

#include <array>

#include "cli/completion/CompletionCommand.h"
#include "cli/doctor/DoctorCommand.h"
#include "cli/explain/ExplainCommand.h"
#include "cli/program/ConfigCommand.h"
#include "cli/program/HelpCommand.h"
#include "cli/recording/RecordCommand.h"
#include "cli/recording/RecordingCommands.h"
#include "cli/snapshot/SnapshotCommands.h"
#include "cli/verbs/Commands.h"
#include "cli/watch/WatchCommand.h"

namespace harvlink::cli {

std::span<AddCommands const> AllCommands() {
    static constexpr std::array All{AddControllerStateCommands,
                                    AddControlGroupCommands,
                                    AddVariableCommands,
                                    AddIOCommands,
                                    AddFileCommands,
                                    AddFaultCommands,
                                    AddJobCommands,
                                    AddControlCommands,
                                    AddMotionCommands,
                                    AddKinematicsCommands,
                                    AddCompletionCommand,
                                    AddConfigCommand,
                                    AddDoctorCommand,
                                    AddExplainCommand,
                                    AddWatchCommand,
                                    AddSnapshotCommands,
                                    AddRecordCommand,
                                    AddRecordingCommands,
                                    AddCompleteWords,
                                    AddHelpCommand};
    return All;
}

} // namespace harvlink::cli
