// The text of a trace line: the one place where foreign text is made safe to stand on a line of its own.
#pragma once

#include <string>
#include <string_view>

#include "dp/merido_tracer.h"

namespace host_reference {

/// `text` with everything that could end a line or steer a terminal written as a visible escape: CR, LF and TAB as \r,
/// \n and \t; every other control character, U+2028 and U+2029 as \xNN for each of their bytes, lower-case.
std::string Escaped(std::string_view text);

/// "HH:MM:SS.mmm module component type text\n", with the local time of the call. `escapedText` comes from Escaped.
std::string FormatLine(std::string_view module, std::string_view component, dp::TraceType type,
                       std::string_view escapedText);

} // namespace host_reference
