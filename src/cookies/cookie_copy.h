// Carries cookies between the two stores, around the login.
#pragma once

#include <string>

#include <wrl/client.h>

#include "WebView2.h"

namespace kelda {

/// Before the login: copies the session's and the load balancer's cookies that WinINet holds for `url` into the
/// runtime, so that the browser gets to the same back-end as the host. Nothing is copied where there is no load
/// balancer's cookie.
/// @param trace  Whether to trace each of them.
void PrePopulateLoadBalancerCookies(const std::wstring& url,
                                    Microsoft::WRL::ComPtr<ICoreWebView2CookieManager> manager, bool trace);

/// After the login: copies the cookies of the list into WinINet, as cookies of `url`. One that cannot be written is
/// traced and does not stop the others.
/// @param trace  Whether to trace each of them, and then what WinINet holds.
void CopyCookiesToWinInet(ICoreWebView2CookieList* list, const std::wstring& url, bool trace);

} // namespace kelda
