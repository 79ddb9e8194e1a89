// Cookies in the shape that a caller gets them in: one block of memory, the texts behind the structures.
#pragma once

#include <memory>
#include <vector>

#include <windows.h>

#include <wininet.h>

#include "cookie_details.h"

namespace windows_gaps {

struct CookieArrayDeleter {
    void operator()(INTERNET_COOKIE2* cookies) const;
};

using CookieArray = std::unique_ptr<INTERNET_COOKIE2[], CookieArrayDeleter>;

/// @return nothing where there is no memory.
CookieArray MakeCookieArray(const std::vector<CookieDetails>& cookies);

} // namespace windows_gaps
