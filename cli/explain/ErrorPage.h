#pragma once

#include <string>

namespace harvlink::cli {

/// All cards as one page of Markdown.
std::string ErrorPage();

} // namespace harvlink::cli
