// The engine's Win32 codes in the results that a runtime answers with.
#pragma once

#include <windows.h>

namespace webview2_runtime {

/// @param error not ERROR_SUCCESS.
inline HRESULT ResultOfEngineError(DWORD error) {
    switch (error) {
    case ERROR_DIRECTORY: // the profile's folder is a file
        return HRESULT_FROM_WIN32(ERROR_FILE_EXISTS);
    case ERROR_PROCESS_ABORTED:
        return E_FAIL;
    default:
        return HRESULT_FROM_WIN32(error);
    }
}

} // namespace webview2_runtime
