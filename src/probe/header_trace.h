// Tracing of a probe's HTTP headers.
#pragma once

#include <windows.h>

#include <urlmon.h>

namespace kelda {

/// Traces request and response headers, a line each, where the user asked for it by the word "trace" (see
/// `ImplementationWordGiven`). What a header says of the user's credentials is left out.
void TraceHttpHeaders(IWinInetHttpInfo& info);

/// Traces the status of an answer other than 200, and its header lines, in the same case. Such an answer ends the bind
/// before its headers could be asked for.
/// @param headers  CR LF after each line; may be null.
void TraceRefusedResponse(DWORD status, LPCWSTR headers);

} // namespace kelda
