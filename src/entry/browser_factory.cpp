// The choice of the browser's backend.
#include <stdexcept>

#include "browser_edge/runtime_check.h"
#include "kelda/kelda.h"
#include "support/implementation_words.h"
#include "support/trace.h"

namespace kelda {
namespace {

/// A runtime whose version is no number is none that can be used.
bool UseWebView2() {
    try {
        return IsWebView2Available();
    } catch (const std::logic_error& error) {
        kWebBrowserEdgeTrace.Info() << "WebView2 runtime version is not a number (" << error.what()
                                    << ") - falling back on legacy browser";
        return false;
    }
}

} // namespace

ZanWebBrowser::~ZanWebBrowser() = default;

std::shared_ptr<ZanWebBrowser> ZanWebBrowser::Factory(const du::Symbol& serverUrl, int checkMode) {
    if (ImplementationWordGiven("ie") || !UseWebView2()) {
        return std::make_shared<ZanWebBrowserIE>(serverUrl, checkMode);
    }
    return std::make_shared<ZanWebBrowserEdge>(serverUrl, checkMode);
}

} // namespace kelda
