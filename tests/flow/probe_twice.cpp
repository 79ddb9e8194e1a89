// A host that asks the library twice in one process, and prints the two statuses.
//   probe_twice URL PATH
#include <cstdio>

#include <windows.h>

#include <ole2.h>

#include "du/string_utilities.h"
#include "kelda/kelda.h"
#include "testbed/windows_gaps/windows_gaps.h"

int wmain(int count, wchar_t** arguments) {
    if (count != 3) {
        std::fputs("usage: probe_twice URL PATH\n", stderr);
        return 2;
    }
    OleInitialize(nullptr);
    SupplyWindowsGaps(GetModuleHandleW(L"kelda.dll"));
    const std::string url = du::WideStrToUtf8(arguments[1]);
    const std::string path = du::WideStrToUtf8(arguments[2]);
    for (int probe = 0; probe < 2; ++probe) {
        const auto status = kelda::ApplyBasicAuthentication(L"Log in", L"Host", "no such device", url, path);
        std::printf("%d\n", static_cast<int>(status));
    }
    OleUninitialize();
    return 0;
}
