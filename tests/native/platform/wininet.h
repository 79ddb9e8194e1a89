// A cookie of the WinINet store, for a native build.
#pragma once

#include <windows.h>

struct INTERNET_COOKIE2 {
    PWSTR pwszName;
    PWSTR pwszValue;
    PWSTR pwszDomain;
    PWSTR pwszPath;
    DWORD dwFlags;
    FILETIME ftExpires;
    BOOL fExpiresSet;
};
