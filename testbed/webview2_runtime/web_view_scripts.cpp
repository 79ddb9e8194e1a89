// Scripts of the host's in pages, and objects of the host's in scripts.
#include "web_view.h"

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "execute_script_handler.h"
#include "testbed/chromium/text.h"

namespace webview2_runtime {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::Page;
using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;
using ScriptAddedHandler = ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler;

/// Hands a text on to a completion handler; nothing means a failure.
template <typename Handler>
void Complete(const ComPtr<Handler>& handler, const std::optional<std::string>& text) noexcept {
    if (!handler) {
        return;
    }
    std::wstring wide;
    try {
        wide = ToUtf16(text.value_or(""));
    } catch (const std::bad_alloc&) {
        handler->Invoke(E_OUTOFMEMORY, nullptr);
        return;
    }
    handler->Invoke(text ? S_OK : E_FAIL, text ? wide.c_str() : nullptr);
}

} // namespace

HRESULT WebView::AddScriptToExecuteOnDocumentCreated(LPCWSTR javaScript, ScriptAddedHandler* handler) {
    return WithPage([&](Page& page) -> HRESULT {
        if (javaScript == nullptr) {
            return E_POINTER;
        }
        page.AddDocumentScript(ToUtf8(javaScript),
                               [owner = ComPtr<ScriptAddedHandler>(handler)](
                                   const std::optional<std::string>& id) { Complete(owner, id); });
        return S_OK;
    });
}

HRESULT WebView::RemoveScriptToExecuteOnDocumentCreated(LPCWSTR id) {
    return WithPage([&](Page& page) -> HRESULT {
        if (id == nullptr) {
            return E_POINTER;
        }
        page.RemoveDocumentScript(ToUtf8(id));
        return S_OK;
    });
}

HRESULT WebView::ExecuteScript(LPCWSTR javaScript, ICoreWebView2ExecuteScriptCompletedHandler* handler) {
    return WithPage([&](Page& page) -> HRESULT {
        if (javaScript == nullptr) {
            return E_POINTER;
        }
        page.Evaluate(ToUtf8(javaScript),
                      [owner = ComPtr<ICoreWebView2ExecuteScriptCompletedHandler>(handler)](
                          const std::optional<std::string>& json) { Complete(owner, json); });
        return S_OK;
    });
}

HRESULT WebView::AddHostObjectToScript(LPCWSTR name, VARIANT* object) {
    return WithPage([&](Page&) -> HRESULT {
        return name == nullptr || object == nullptr ? E_POINTER : hostObjects_.Add(name, *object);
    });
}

HRESULT WebView::RemoveHostObjectFromScript(LPCWSTR name) {
    return WithPage(
        [&](Page&) -> HRESULT { return name == nullptr ? E_POINTER : hostObjects_.Remove(name); });
}

void WebView::OnBridgeMessage(const std::string& message,
                              std::function<void(const std::string& text)> reply) {
    DuringEvent([&] {
        const std::string answer = hostObjects_.Answer(message);
        if (IsClosed()) {
            hostObjects_.Clear(); // what the host's object has handed out after it closed the web view
        }
        reply(answer);
    });
}

} // namespace webview2_runtime
