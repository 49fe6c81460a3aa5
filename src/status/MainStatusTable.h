#pragma once

#include <cstdint>

#include "status/StatusTable.h"

namespace harvlink {

/// The texts of the codes that the controller sends and of those that the library raises without a text of their own.
extern StatusTable<std::int32_t> const MainStatusTable;

} // namespace harvlink
