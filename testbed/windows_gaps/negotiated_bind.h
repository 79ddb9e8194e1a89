// A synchronous bind to storage, in as many attempts as its credentials take.
#pragma once

#include <urlmon.h>

namespace windows_gaps {

/// Does what `moniker->BindToStorage` does on Windows, with what the caller registered in the context. The caller may
/// release its own references to everything while the bind runs.
HRESULT BindNegotiated(IMoniker* moniker, IBindCtx* context, IMoniker* toLeft, REFIID iid, void** object);

} // namespace windows_gaps
