// One IDispatch: the control raises its events there, and pages call it as window.external.
#include <algorithm>
#include <cwchar>
#include <string_view>
#include <utility>

#include <exdispid.h>

#include "browser_ie/impl.h"
#include "support/com_boundary.h"
#include "support/failed_call.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr const wchar_t* kNorvName = L"norv";
// NOLINTNEXTLINE(readability-identifier-naming): named as the platform names its ids
constexpr DISPID DISPID_NORV = 888111888;

constexpr std::wstring_view kNoAction = L"javascript:void(0)";

// The arguments of DISPID_BEFORENAVIGATE2; the last one comes first.
constexpr UINT kBeforeNavigateArguments = 7;
constexpr UINT kCancel = 0;
constexpr UINT kUrl = 5;

/// The text of an argument, which may be given by reference; empty if it is none.
std::wstring_view TextIn(const VARIANTARG& argument) {
    const VARIANT* value = argument.vt == (VT_BYREF | VT_VARIANT) ? argument.pvarVal : &argument;
    BSTR text = nullptr;
    if (value != nullptr && value->vt == VT_BSTR) {
        text = value->bstrVal;
    } else if (value != nullptr && value->vt == (VT_BYREF | VT_BSTR) && value->pbstrVal != nullptr) {
        text = *value->pbstrVal;
    }
    return {text, SysStringLen(text)};
}

void OnBeforeNavigate(const DISPPARAMS* parameters) {
    if (parameters == nullptr || parameters->cArgs != kBeforeNavigateArguments) {
        return;
    }
    const VARIANTARG& cancel = parameters->rgvarg[kCancel];
    if (TextIn(parameters->rgvarg[kUrl]).find(kNoAction) != std::wstring_view::npos &&
        cancel.vt == (VT_BYREF | VT_BOOL) && cancel.pboolVal != nullptr) {
        *cancel.pboolVal = VARIANT_TRUE;
    }
}

} // namespace

HRESULT ZanWebBrowserIE::Impl::GetTypeInfoCount(UINT* count) {
    if (count != nullptr) {
        *count = 0;
    }
    return E_NOTIMPL;
}

HRESULT ZanWebBrowserIE::Impl::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) {
    if (info != nullptr) {
        *info = nullptr;
    }
    return E_NOTIMPL;
}

HRESULT ZanWebBrowserIE::Impl::GetIDsOfNames(REFIID /*iid*/, LPOLESTR* names, UINT nameCount, LCID /*locale*/,
                                             DISPID* ids) {
    if (names == nullptr || ids == nullptr || nameCount == 0) {
        return E_INVALIDARG;
    }
    std::fill_n(ids, nameCount, DISPID_UNKNOWN);
    if (nameCount != 1 || names[0] == nullptr || std::wcscmp(names[0], kNorvName) != 0) {
        return DISP_E_UNKNOWNNAME;
    }
    ids[0] = DISPID_NORV;
    return S_OK;
}

// What an engine asks for with both flags is a property. After a call of the owner nothing here is touched: it may have
// destroyed the control.
HRESULT ZanWebBrowserIE::Impl::Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD flags,
                                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* /*exception*/,
                                      UINT* /*wrongArgument*/) {
    return AtComBoundary(
        [&] {
            if ((flags & DISPATCH_PROPERTYGET) != 0) {
                GetMember(id, result);
            } else if ((flags & DISPATCH_METHOD) != 0) {
                OnEvent(id, parameters);
            }
            return S_OK;
        },
        TraceLegacyException);
}

void ZanWebBrowserIE::Impl::GetMember(DISPID id, VARIANT* result) {
    if (id != DISPID_NORV) {
        return;
    }
    kWebBrowserIETrace.Info() << "ZanWebBrowser::Invoke DISPATCH_PROPERTYGET - dispIdMember == DISPID_NORV";
    if (result != nullptr) {
        AddRef();
        result->vt = VT_DISPATCH;
        result->pdispVal = this;
    }
}

void ZanWebBrowserIE::Impl::OnEvent(DISPID id, const DISPPARAMS* parameters) {
    switch (id) {
    case DISPID_NORV:
        kWebBrowserIETrace.Info() << "ZanWebBrowser::Invoke DISPATCH_METHOD - dispIdMember == DISPID_NORV";
        ReportSession();
        break;
    case DISPID_NAVIGATEERROR:
        kWebBrowserIETrace.Info() << "Navigation failed. Leaving IE control visible for user to read message";
        break;
    case DISPID_BEFORENAVIGATE2:
        OnBeforeNavigate(parameters);
        break;
    case DISPID_DOCUMENTCOMPLETE:
        OnDocumentComplete();
        break;
    default:
        break;
    }
}

void ZanWebBrowserIE::Impl::OnDocumentComplete() {
    if (mode_ != 0) {
        ReportSession();
        return;
    }
    InstallKeyboardHook();
    if (callback_ != nullptr) {
        callback_->OnNavigationCompleted();
    }
}

// Once: whatever the page does while the owner hears of it is no second report.
void ZanWebBrowserIE::Impl::ReportSession() {
    if (callback_ == nullptr) {
        return;
    }
    kWebBrowserIETrace.Info() << "OnSessionAuthenticated();";
    std::exchange(callback_, nullptr)->OnSessionAuthenticated();
}

} // namespace kelda
