// Keeps exceptions from crossing into the system's code, which calls us through COM and cannot handle them.
#pragma once

#include <new>

#include <windows.h>

namespace kelda {

/// Runs the body of a COM method, which returns its HRESULT; an exception becomes E_OUTOFMEMORY or E_FAIL.
template <typename Body>
HRESULT AtComBoundary(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

} // namespace kelda
