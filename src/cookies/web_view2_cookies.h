// The cookie store of the WebView2 runtime.
#pragma once

#include <wrl/client.h>

#include "WebView2.h"

#include "cookies/cookie_record.h"

namespace kelda {

/// Fills `cookie` from one of the runtime's; what a getter does not give stays as it was.
void FromWebView2Cookie(CookieRecord& cookie, ICoreWebView2Cookie* source);

/// Makes the cookie in the runtime, in place of one of the same name, domain and path. A failure is traced.
/// @return whether it was made and stored, even if the runtime refused one of its attributes.
bool ToWebView2Cookie(const CookieRecord& cookie, Microsoft::WRL::ComPtr<ICoreWebView2CookieManager> manager);

} // namespace kelda
