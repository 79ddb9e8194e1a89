// Fake of the controller.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "tests/support/webview2/fake_web_view.h"

namespace test_support {

class FakeController final : public FakeRuntimeObject<ICoreWebView2Controller4> {
  public:
    FakeController(CallScript& script, FakeWebViewState& state, std::string name)
        : FakeRuntimeObject(script, std::move(name)), state_(state) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        static const std::array kViews = {
            View{__uuidof(ICoreWebView2Controller4), "ICoreWebView2Controller4", "controller4"}};
        return QueryViews(kViews, iid, object,
                          [this](const char* name) { return new FakeController(Script(), state_, name); });
    }
    HRESULT STDMETHODCALLTYPE put_AllowExternalDrop(BOOL allowed) override {
        return Called("put_AllowExternalDrop", std::to_string(allowed));
    }
    HRESULT STDMETHODCALLTYPE get_CoreWebView2(ICoreWebView2** webView) override {
        return GiveObject(
            "get_CoreWebView2", "", [this] { return new FakeWebView(Script(), state_, "webView"); }, webView);
    }
    HRESULT STDMETHODCALLTYPE put_Bounds(RECT bounds) override {
        return Called("put_Bounds", std::to_string(bounds.left) + "," + std::to_string(bounds.top) + " " +
                                        std::to_string(bounds.right) + "x" + std::to_string(bounds.bottom));
    }
    HRESULT STDMETHODCALLTYPE put_IsVisible(BOOL visible) override {
        return Called("put_IsVisible", std::to_string(visible));
    }
    HRESULT STDMETHODCALLTYPE Close() override { return Called("Close"); }

  private:
    FakeWebViewState& state_;
};

} // namespace test_support
