// The trace line of a failed call.
#include "support/failed_call.h"

#include "support/trace.h"

namespace kelda {
namespace {

void TraceFailure(const ComponentTrace& trace, const char* what, HRESULT code) {
    trace.Info() << "Failed: " << what << " error code: " << code;
}

void TraceFailureIfPossible(const ComponentTrace& trace, const char* what, HRESULT code) noexcept {
    try {
        TraceFailure(trace, what, code);
    } catch (...) {
        // No memory for the line either; the caller still gets the code.
    }
}

} // namespace

bool Succeeded(HRESULT result, const char* operation) {
    if (FAILED(result)) {
        TraceFailure(kWebBrowserEdgeTrace, operation, result);
    }
    return SUCCEEDED(result);
}

void TraceException(const char* text, HRESULT code) noexcept {
    TraceFailureIfPossible(kWebBrowserEdgeTrace, text, code);
}

void TraceProbeException(const char* text, HRESULT code) noexcept {
    TraceFailureIfPossible(kBasicAuthenticationTrace, text, code);
}

void TraceLegacyException(const char* text, HRESULT code) noexcept {
    TraceFailureIfPossible(kWebBrowserIETrace, text, code);
}

} // namespace kelda
