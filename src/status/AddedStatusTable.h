#pragma once

#include <cstdint>

#include "status/StatusTable.h"

namespace harvlink {

/// The texts of the codes that only connections with options raise. Apart from the main table, which stays as it is.
extern StatusTable<std::int32_t> const AddedStatusTable;

} // namespace harvlink
