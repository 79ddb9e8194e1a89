// Completion and event handlers made of functions, and counted, so that a test sees that the runtime lets go of them.
#pragma once

#include <functional>
#include <utility>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace webview2_runtime_test {

/// How many handlers are alive.
inline int liveHandlers = 0;

template <typename Interface, typename Invoke>
class FunctionHandler;

template <typename Interface, typename... Arguments>
class FunctionHandler<Interface, HRESULT (STDMETHODCALLTYPE Interface::*)(Arguments...)> final
    : public Interface {
  public:
    explicit FunctionHandler(std::function<void(Arguments...)> function) : function_(std::move(function)) {
        ++liveHandlers;
    }
    virtual ~FunctionHandler() { --liveHandlers; }
    FunctionHandler(const FunctionHandler&) = delete;
    FunctionHandler& operator=(const FunctionHandler&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*id*/, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE Invoke(Arguments... arguments) override {
        function_(arguments...);
        return S_OK;
    }

  private:
    std::function<void(Arguments...)> function_;
    ULONG references_ = 1;
};

/// @param function gets what `Interface::Invoke` gets.
template <typename Interface, typename Function>
Microsoft::WRL::ComPtr<Interface> MakeHandler(Function&& function) {
    using Handler = FunctionHandler<Interface, decltype(&Interface::Invoke)>;
    Microsoft::WRL::ComPtr<Interface> owner;
    *owner.GetAddressOf() = new Handler(std::forward<Function>(function));
    return owner;
}

} // namespace webview2_runtime_test
