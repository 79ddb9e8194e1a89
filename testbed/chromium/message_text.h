// Reads what Chromium writes.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace testbed::chromium {

/// Strings of scripts need not be Unicode; what is not comes out as U+FFFD.
///
/// @throws nlohmann::json::exception if it is no JSON.
nlohmann::json ParseMessage(const std::string& text);

} // namespace testbed::chromium
