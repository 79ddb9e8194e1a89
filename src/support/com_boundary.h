// Keeps exceptions from crossing into the system's code, which calls us through COM and cannot handle them.
#pragma once

#include <exception>
#include <new>

#include <windows.h>

namespace kelda {

/// Runs the body of a COM method, which returns its HRESULT; an exception becomes E_OUTOFMEMORY or E_FAIL.
/// @param report  Called with the exception's text and that code; must not throw.
template <typename Body, typename Report>
HRESULT AtComBoundary(Body&& body, Report&& report) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc& exception) {
        report(exception.what(), E_OUTOFMEMORY);
        return E_OUTOFMEMORY;
    } catch (const std::exception& exception) {
        report(exception.what(), E_FAIL);
    } catch (...) {
        report("unknown exception", E_FAIL);
    }
    return E_FAIL;
}

/// The same, for methods whose callers see all there is to see.
template <typename Body>
HRESULT AtComBoundary(Body&& body) noexcept {
    return AtComBoundary(body, [](const char*, HRESULT) {});
}

} // namespace kelda
