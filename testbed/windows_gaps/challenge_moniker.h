// A URL moniker whose synchronous binds to storage meet Basic challenges as those of Windows do.
#pragma once

#include <urlmon.h>

namespace windows_gaps {

/// Stands for `CreateURLMoniker`.
HRESULT WINAPI CreateChallengeMoniker(IMoniker* base, LPCWSTR url, IMoniker** moniker);

} // namespace windows_gaps
