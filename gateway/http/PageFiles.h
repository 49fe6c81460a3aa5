#pragma once

#include "gateway/http/Request.h"

namespace harvlink::gateway {

/// The file of the embedded page at a path; 404 if there is none.
Response PageFile(Request const& request);

/// What every answer says besides: nothing of it is shown within another page, and nothing runs that did not come from here.
std::vector<std::pair<std::string, std::string>> const& SecurityHeaders();

} // namespace harvlink::gateway
