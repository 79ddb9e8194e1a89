// Each listener may leave, or close the control, while it is called.
#include "event_source.h"

#include <algorithm>

#include <exdisp.h>
#include <olectl.h>

#include "com_object.h"

namespace legacy_control {

using Microsoft::WRL::ComPtr;

void EventSource::Raise(DISPID event, std::vector<VARIANTARG> arguments) {
    std::ranges::reverse(arguments);
    DISPPARAMS parameters{};
    parameters.rgvarg = arguments.data();
    parameters.cArgs = static_cast<UINT>(arguments.size());
    const auto sinks = sinks_;
    for (const auto& [cookie, sink] : sinks) {
        if (silent_) {
            return;
        }
        if (sinks_.contains(cookie)) {
            sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                         nullptr);
        }
    }
}

HRESULT EventSource::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    return Answer<IConnectionPoint, IUnknown>(this, id, object) ? S_OK : E_NOINTERFACE;
}

HRESULT EventSource::GetConnectionInterface(IID* id) {
    if (id == nullptr) {
        return E_POINTER;
    }
    *id = DIID_DWebBrowserEvents2;
    return S_OK;
}

HRESULT EventSource::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (container == nullptr) {
        return E_POINTER;
    }
    *container = &control_;
    control_.AddRef();
    return S_OK;
}

HRESULT EventSource::Advise(IUnknown* sink, DWORD* cookie) {
    return WithoutExceptions([&]() -> HRESULT {
        if (sink == nullptr || cookie == nullptr) {
            return E_POINTER;
        }
        *cookie = 0;
        ComPtr<IDispatch> dispatch;
        if (FAILED(sink->QueryInterface(DIID_DWebBrowserEvents2,
                                        reinterpret_cast<void**>(dispatch.GetAddressOf())))) {
            dispatch = Query<IDispatch>(sink);
        }
        if (!dispatch) {
            return CONNECT_E_CANNOTCONNECT;
        }
        sinks_[lastCookie_ + 1] = dispatch;
        *cookie = ++lastCookie_;
        return S_OK;
    });
}

HRESULT EventSource::Unadvise(DWORD cookie) {
    const auto removed = sinks_.extract(cookie); // released when the map is as it will be
    return removed.empty() ? CONNECT_E_NOCONNECTION : S_OK;
}

HRESULT EventSource::EnumConnections(IEnumConnections** /*connections*/) {
    return E_NOTIMPL;
}

} // namespace legacy_control
