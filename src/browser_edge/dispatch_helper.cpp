// The object that the page calls to report its session.
#include "browser_edge/dispatch_helper.h"

#include "browser_edge/bare_dispatch.h"
#include "support/com_boundary.h"
#include "support/failed_call.h"
#include "support/trace.h"

HRESULT ZanWebBrowserDispatchHelper::QueryInterface(REFIID iid, void** object) {
    return kelda::QueryDispatchOnly(this, iid, object);
}

HRESULT ZanWebBrowserDispatchHelper::GetTypeInfoCount(UINT* count) {
    return kelda::NoTypeInfoCount(count);
}

HRESULT ZanWebBrowserDispatchHelper::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    return kelda::NoTypeInfo(info);
}

HRESULT ZanWebBrowserDispatchHelper::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* /*names*/, UINT /*nameCount*/,
                                                   LCID /*locale*/, DISPID* /*ids*/) {
    return E_NOTIMPL;
}

// The flags are not looked at, on purpose.
HRESULT ZanWebBrowserDispatchHelper::Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD /*flags*/,
                                            DISPPARAMS* parameters, VARIANT* /*result*/,
                                            EXCEPINFO* /*exception*/, UINT* /*wrongArgument*/) {
    return kelda::AtComBoundary(
        [&] {
            if (id == DISPID_VALUE && parameters != nullptr) {
                kelda::kWebBrowserEdgeTrace.Info()
                    << "ZanWebBrowserEdge::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV";
                callback_->OnSessionAuthenticated();
            }
            return S_OK;
        },
        kelda::TraceException);
}
