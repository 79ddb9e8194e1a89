// A WebView2Loader.dll that exports neither of the functions.
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE, DWORD, void*) {
    return TRUE;
}
