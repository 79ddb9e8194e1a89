// The choice of the browser's backend.
#include <memory>
#include <stdexcept>

#include <windows.h>

#include "browser_edge/runtime_check.h"
#include "kelda/kelda.h"
#include "support/implementation_words.h"
#include "support/trace.h"

namespace kelda {
namespace {

bool FallBack(const char* why) {
    kWebBrowserEdgeTrace.Info() << "WebView2 runtime version cannot be read (" << why
                                << ") - falling back on legacy browser";
    return false;
}

/// A runtime whose version is no number is none that can be used.
bool UseWebView2() {
    try {
        return IsWebView2Available();
    } catch (const std::invalid_argument& error) {
        return FallBack(error.what());
    } catch (const std::out_of_range& error) {
        return FallBack(error.what());
    }
}

/// Keeps this module loaded from now on: a message hook, the runtime's late completions and a timer may point into it when the
/// host thinks that it is done.
void KeepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&KeepModuleLoaded), &module);
}

} // namespace

ZanWebBrowser::~ZanWebBrowser() = default;

std::shared_ptr<ZanWebBrowser> ZanWebBrowser::Factory(const du::Symbol& serverUrl, int checkMode) {
    KeepModuleLoaded();
    if (ImplementationWordGiven("ie") || !UseWebView2()) {
        return std::make_shared<ZanWebBrowserIE>(serverUrl, checkMode);
    }
    return std::make_shared<ZanWebBrowserEdge>(serverUrl, checkMode);
}

} // namespace kelda
