// The host object "external" with its one member.
#include <cwchar>

#include "browser_edge/bare_dispatch.h"
#include "browser_edge/impl.h"
#include "support/com_boundary.h"
#include "support/failed_call.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr const wchar_t* kNorvName = L"norv";
// NOLINTNEXTLINE(readability-identifier-naming): named as the platform names its ids
constexpr DISPID DISPID_NORV = 888111888;

} // namespace

HRESULT ZanWebBrowserEdge::Impl::QueryInterface(REFIID iid, void** object) {
    return QueryDispatchOnly(this, iid, object);
}

HRESULT ZanWebBrowserEdge::Impl::GetTypeInfoCount(UINT* count) {
    return NoTypeInfoCount(count);
}

HRESULT ZanWebBrowserEdge::Impl::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    return NoTypeInfo(info);
}

// E_NOTIMPL also for a name that is not known, on purpose.
HRESULT ZanWebBrowserEdge::Impl::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* names, UINT nameCount,
                                               LCID /*locale*/, DISPID* ids) {
    if (nameCount == 0 || names == nullptr || names[0] == nullptr || ids == nullptr ||
        std::wcscmp(names[0], kNorvName) != 0) {
        return E_NOTIMPL;
    }
    ids[0] = DISPID_NORV;
    return S_OK;
}

HRESULT ZanWebBrowserEdge::Impl::Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD flags,
                                        DISPPARAMS* /*parameters*/, VARIANT* result, EXCEPINFO* /*exception*/,
                                        UINT* /*wrongArgument*/) {
    return AtComBoundary(
        [&] {
            if ((flags & DISPATCH_PROPERTYGET) != 0 && id == DISPID_NORV) {
                kWebBrowserEdgeTrace.Info()
                    << "ZanWebBrowserEdge::Invoke DISPATCH_PROPERTYGET - dispIdMember == DISPID_NORV";
                if (result != nullptr) {
                    dispatchHelper_.AddRef();
                    result->vt = VT_DISPATCH;
                    result->pdispVal = &dispatchHelper_;
                }
            }
            return S_OK;
        },
        TraceException);
}

} // namespace kelda
