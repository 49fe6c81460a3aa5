#pragma once

#include "harvlink/StatusInfo.h"
#include "status/StatusTable.h"

namespace harvlink {

/// Gives a status the text of its subsystem. Unlike HelperFunction::GetStatusInfo this never changes the code.
template <typename Code>
class ContextualStatusInfoHandler {
public:
    virtual ~ContextualStatusInfoHandler() = default;

    virtual void SetContextualError(StatusInfo& status) const = 0;
};

template <typename Code>
class HSEContextualStatusInfoHandler final : public ContextualStatusInfoHandler<Code> {
public:
    /// The table is not owned and must outlive the handler.
    explicit HSEContextualStatusInfoHandler(StatusTable<Code> const* errorTable) : table(errorTable) {}

    void SetContextualError(StatusInfo& status) const override {
        if (auto const text = table->Find(static_cast<Code>(status.StatusCode))) {
            status.Message = *text;
        }
    }

private:
    StatusTable<Code> const* table;
};

} // namespace harvlink
