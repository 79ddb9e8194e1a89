// Where the reference implementation writes its trace lines. Not part of the host's own library: what a host has of its
// own for this purpose takes its place. Every function may be called on any thread.
//
// A line reads "HH:MM:SS.mmm module component type text", with the local time, and leaves in one write. What could end a
// line or steer a terminal is written as an escape (\r, \n, \t, \xNN), so that no text from outside can forge a line.
#pragma once

#include "dp/merido_tracer.h"
#include "du/api.h"

namespace host_reference {

/// Told each trace line on the thread that wrote it. `text` is UTF-8, escaped, without line end; all texts are valid
/// during the call only. What a sink traces itself is written, but not told to it. A sink must not throw.
using TraceSink = void (*)(void* context, const char* module, const char* component, dp::TraceType type,
                           const char* text);

/// Sends trace lines to `sink` as well, until it is replaced; null stops that. The previous sink may still be in a call
/// on another thread when this returns.
HOST_UTILITY_API void SetTraceSink(TraceSink sink, void* context);

/// Appends trace lines to a file from now on, instead of stderr; others may read it meanwhile. Null or empty: to stderr
/// again, and the file is closed.
/// @return false where the file cannot be opened; lines then go on as before.
HOST_UTILITY_API bool SetTraceFile(const wchar_t* path);

/// Switches the lines to stderr or file off and on (they are on at first). A sink is told them in either case.
HOST_UTILITY_API void SetTraceOutputEnabled(bool enabled);

} // namespace host_reference
