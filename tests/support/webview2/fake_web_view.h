// Fakes of the web view and its settings.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>

#include <wrl/client.h>

#include "tests/support/webview2/fake_cookies.h"
#include "tests/support/webview2/fake_runtime_object.h"

namespace test_support {

/// What all views of one web view share, and what a test does with it.
struct FakeWebViewState {
    /// Event name -> the registered handler, until it is removed.
    std::map<std::string, Microsoft::WRL::ComPtr<IUnknown>> handlers;

    /// The completion of the document script, until the test calls it.
    Microsoft::WRL::ComPtr<ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler> scriptAdded;

    CookiesAsked cookiesAsked;

    /// The host object while it is exposed, as script would use it.
    Microsoft::WRL::ComPtr<IDispatch> hostObject;

    std::int64_t lastToken = 0;
    std::map<std::int64_t, std::string> tokens;

    /// The handler of an event; null when none is registered.
    template <typename Handler>
    Handler* HandlerOf(const std::string& event) const {
        const auto found = handlers.find(event);
        return found != handlers.end() ? static_cast<Handler*>(found->second.Get()) : nullptr;
    }

    /// Lets go of a handler; a test fails where somebody else still has it.
    void Drop(const std::string& event);
};

class FakeSettings final : public FakeRuntimeObject<ICoreWebView2Settings3> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        static const std::array kViews = {
            View{__uuidof(ICoreWebView2Settings3), "ICoreWebView2Settings3", "settings3"}};
        return QueryViews(kViews, iid, object,
                          [this](const char* name) { return new FakeSettings(Script(), name); });
    }
    HRESULT STDMETHODCALLTYPE put_IsScriptEnabled(BOOL enabled) override {
        return Called("put_IsScriptEnabled", std::to_string(enabled));
    }
    HRESULT STDMETHODCALLTYPE put_AreDefaultScriptDialogsEnabled(BOOL enabled) override {
        return Called("put_AreDefaultScriptDialogsEnabled", std::to_string(enabled));
    }
    HRESULT STDMETHODCALLTYPE put_AreDefaultContextMenusEnabled(BOOL enabled) override {
        return Called("put_AreDefaultContextMenusEnabled", std::to_string(enabled));
    }
    HRESULT STDMETHODCALLTYPE put_AreDevToolsEnabled(BOOL enabled) override {
        return Called("put_AreDevToolsEnabled", std::to_string(enabled));
    }
    HRESULT STDMETHODCALLTYPE put_AreBrowserAcceleratorKeysEnabled(BOOL enabled) override {
        return Called("put_AreBrowserAcceleratorKeysEnabled", std::to_string(enabled));
    }
};

class FakeWebView final : public FakeRuntimeObject<ICoreWebView2_15> {
  public:
    FakeWebView(CallScript& script, FakeWebViewState& state, std::string name)
        : FakeRuntimeObject(script, std::move(name)), state_(state) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        static const std::array kViews = {View{__uuidof(ICoreWebView2_2), "ICoreWebView2_2", "webView2"},
                                          View{__uuidof(ICoreWebView2_5), "ICoreWebView2_5", "webView5"},
                                          View{__uuidof(ICoreWebView2_14), "ICoreWebView2_14", "webView14"},
                                          View{__uuidof(ICoreWebView2_15), "ICoreWebView2_15", "webView15"}};
        return QueryViews(kViews, iid, object,
                          [this](const char* name) { return new FakeWebView(Script(), state_, name); });
    }
    HRESULT STDMETHODCALLTYPE get_Settings(ICoreWebView2Settings** settings) override {
        return GiveObject(
            "get_Settings", "", [this] { return new FakeSettings(Script(), "settings"); }, settings);
    }
    HRESULT STDMETHODCALLTYPE get_CookieManager(ICoreWebView2CookieManager** manager) override {
        return GiveObject(
            "get_CookieManager", "", [this] { return new FakeCookieManager(Script(), state_.cookiesAsked); },
            manager);
    }

#define FAKE_EVENT(Name)                                                                                     \
    HRESULT STDMETHODCALLTYPE add_##Name(ICoreWebView2##Name##EventHandler* handler,                         \
                                         EventRegistrationToken* token) override {                           \
        return Add(#Name, handler, token);                                                                   \
    }                                                                                                        \
    HRESULT STDMETHODCALLTYPE remove_##Name(EventRegistrationToken token) override {                         \
        return Remove(#Name, token);                                                                         \
    }
    FAKE_EVENT(ServerCertificateErrorDetected)
    FAKE_EVENT(ClientCertificateRequested)
    FAKE_EVENT(WebResourceRequested)
    FAKE_EVENT(NavigationStarting)
    FAKE_EVENT(WebResourceResponseReceived)
    FAKE_EVENT(BasicAuthenticationRequested)
    FAKE_EVENT(NavigationCompleted)
#undef FAKE_EVENT

    HRESULT STDMETHODCALLTYPE AddHostObjectToScript(LPCWSTR name, VARIANT* object) override;
    HRESULT STDMETHODCALLTYPE RemoveHostObjectFromScript(LPCWSTR name) override;
    HRESULT STDMETHODCALLTYPE
    AddWebResourceRequestedFilter(LPCWSTR uri, COREWEBVIEW2_WEB_RESOURCE_CONTEXT context) override {
        return Called("AddWebResourceRequestedFilter", Narrow(uri) + " " + std::to_string(context));
    }
    HRESULT STDMETHODCALLTYPE AddScriptToExecuteOnDocumentCreated(
        LPCWSTR script, ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler* handler) override;
    HRESULT STDMETHODCALLTYPE RemoveScriptToExecuteOnDocumentCreated(LPCWSTR id) override {
        return Called("RemoveScriptToExecuteOnDocumentCreated", Narrow(id));
    }
    HRESULT STDMETHODCALLTYPE
    NavigateWithWebResourceRequest(ICoreWebView2WebResourceRequest* request) override {
        return Called("NavigateWithWebResourceRequest", request != nullptr ? "request" : "(null)");
    }
    HRESULT STDMETHODCALLTYPE Stop() override {
        return Called("Stop");
    }

  private:
    HRESULT Add(const char* event, IUnknown* handler, EventRegistrationToken* token);
    HRESULT Remove(const char* event, EventRegistrationToken token);

    FakeWebViewState& state_;
};

} // namespace test_support
