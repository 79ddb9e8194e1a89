// Fakes of the environment and of what it makes.
#pragma once

#include <array>
#include <string>

#include <wrl/client.h>

#include "tests/support/webview2/fake_runtime_object.h"

namespace test_support {

class FakeControllerOptions final : public FakeRuntimeObject<ICoreWebView2ControllerOptions> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;

    HRESULT STDMETHODCALLTYPE put_IsInPrivateModeEnabled(BOOL enabled) override {
        return Called("put_IsInPrivateModeEnabled", std::to_string(enabled));
    }
};

class FakeRequest final : public FakeRuntimeObject<ICoreWebView2WebResourceRequest> {
  public:
    using FakeRuntimeObject::FakeRuntimeObject;
};

using ControllerCreated = Microsoft::WRL::ComPtr<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>;

class FakeEnvironment final : public FakeRuntimeObject<ICoreWebView2Environment10> {
  public:
    /// @param controllerCreated  Gets the completion of the request for a controller.
    FakeEnvironment(CallScript& script, ControllerCreated& controllerCreated, std::string name)
        : FakeRuntimeObject(script, std::move(name)), controllerCreated_(controllerCreated) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        static const std::array kViews = {
            View{__uuidof(ICoreWebView2Environment2), "ICoreWebView2Environment2", "environment2"},
            View{__uuidof(ICoreWebView2Environment10), "ICoreWebView2Environment10", "environment10"}};
        return QueryViews(kViews, iid, object, [this](const char* name) {
            return new FakeEnvironment(Script(), controllerCreated_, name);
        });
    }
    HRESULT STDMETHODCALLTYPE
    CreateCoreWebView2ControllerOptions(ICoreWebView2ControllerOptions** options) override {
        return GiveObject(
            "CreateCoreWebView2ControllerOptions", "",
            [this] { return new FakeControllerOptions(Script(), "controllerOptions"); }, options);
    }
    HRESULT STDMETHODCALLTYPE CreateCoreWebView2ControllerWithOptions(
        HWND parent, ICoreWebView2ControllerOptions* options,
        ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) override {
        const HRESULT result =
            Called("CreateCoreWebView2ControllerWithOptions",
                   Hexadecimal(static_cast<unsigned long>(reinterpret_cast<ULONG_PTR>(parent))) +
                       (options != nullptr ? " controllerOptions" : " (null)"));
        if (SUCCEEDED(result)) {
            controllerCreated_ = handler;
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE CreateWebResourceRequest(LPCWSTR uri, LPCWSTR method, IStream* content,
                                                       LPCWSTR headers,
                                                       ICoreWebView2WebResourceRequest** request) override {
        return GiveObject(
            "CreateWebResourceRequest",
            Narrow(uri) + " " + Narrow(method) + (content == nullptr ? "" : " with a body") + " [" +
                Narrow(headers) + "]",
            [this] { return new FakeRequest(Script(), "request"); }, request);
    }

  private:
    ControllerCreated& controllerCreated_;
};

} // namespace test_support
