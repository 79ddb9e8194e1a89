// The trace line of a failed call.
#include "support/failed_call.h"

#include "support/trace.h"

namespace kelda {

bool Succeeded(HRESULT result, const char* operation) {
    if (FAILED(result)) {
        kWebBrowserEdgeTrace.Info() << "Failed: " << operation << " error code: " << result;
    }
    return SUCCEEDED(result);
}

void TraceException(const char* text, HRESULT code) noexcept {
    try {
        Succeeded(code, text);
    } catch (...) {
        // No memory for the line either; the caller still gets the code.
    }
}

} // namespace kelda
