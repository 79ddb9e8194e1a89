// Tracing of a probe's HTTP headers.
#pragma once

#include <windows.h>

#include <urlmon.h>

namespace kelda {

/// Traces request and response headers, a line each, where the user asked for it by the word "trace" (see
/// `ImplementationWordGiven`). What a header says of the user's credentials is left out.
void TraceHttpHeaders(IWinInetHttpInfo& info);

} // namespace kelda
