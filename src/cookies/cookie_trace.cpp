// Lines of the browser's component, in UTF-8.
#include "cookies/cookie_trace.h"

#include "cookies/cookie_text.h"
#include "du/string_utilities.h"
#include "support/trace.h"

namespace kelda {

void TraceLine(const std::wstring& text) {
    kWebBrowserEdgeTrace.Info() << du::WideStrToUtf8(text);
}

void TraceCookieReceived(const CookieRecord& cookie) {
    TraceLine(L"Cookie received: " + ToSetCookieString(cookie));
}

} // namespace kelda
