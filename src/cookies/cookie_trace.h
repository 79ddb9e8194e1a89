// Trace lines that the copying and the capture of cookies have in common. Callers look first whether tracing is on: the
// texts of lines that are not wanted are not even built.
#pragma once

#include <string>

#include "cookies/cookie_record.h"

namespace kelda {

/// Writes `text` as one line.
void TraceLine(const std::wstring& text);

/// A cookie that the runtime or a response has brought.
void TraceCookieReceived(const CookieRecord& cookie);

} // namespace kelda
