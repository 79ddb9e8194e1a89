// A script error is a line in the trace: no box, and the page's scripts go on.
#include <algorithm>
#include <array>
#include <string>

#include <mshtml.h>

#include "browser_ie/impl.h"
#include "browser_ie/scoped_variant.h"
#include "du/string_utilities.h"
#include "support/com_boundary.h"
#include "support/com_call.h"
#include "support/failed_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

// Of CGID_DocHostCommandHandler, which the platform's libraries do not have under that name everywhere.
constexpr GUID kDocHostCommands = {
    0xF38BC242, 0xB950, 0x11D1, {0x89, 0x18, 0x00, 0xC0, 0x4F, 0xC2, 0xC8, 0x36}};

/// Of a field in the trace, in UTF-16 units: a page decides how long its texts are.
constexpr std::size_t kLongestText = 4096;

constexpr std::array<const wchar_t*, 5> kFields = {L"errorUrl", L"errorMessage", L"errorCode", L"errorLine",
                                                   L"errorCharacter"};

/// The object in a VARIANT, with a reference of its own; empty if there is none.
ComPtr<IUnknown> ObjectIn(const VARIANT* value) {
    const bool object = value != nullptr && (value->vt == VT_UNKNOWN || value->vt == VT_DISPATCH);
    return object ? value->punkVal : nullptr; // a VARIANT has both kinds in one place
}

/// The event that the document's window is just raising.
ComPtr<IDispatch> EventOf(const ComPtr<IUnknown>& document) {
    ComPtr<IHTMLDocument2> page;
    Query(document, page);
    ComPtr<IHTMLWindow2> window;
    CallOn(page, &IHTMLDocument2::get_parentWindow, window.GetAddressOf());
    ComPtr<IHTMLEventObj> event;
    CallOn(window, &IHTMLWindow2::get_event, event.GetAddressOf());
    ComPtr<IDispatch> fields;
    Query(event, fields);
    return fields;
}

bool IsNumber(VARTYPE type) {
    return type == VT_I1 || type == VT_UI1 || type == VT_I2 || type == VT_I4 || type == VT_I8 ||
           type == VT_INT || type == VT_UI2 || type == VT_UI4 || type == VT_UI8 || type == VT_UINT ||
           type == VT_R4 || type == VT_R8;
}

/// Texts as they are, numbers in digits; all else has none.
std::string TextOf(ScopedVariant& value) {
    ScopedVariant text;
    const bool given =
        (value.vt == VT_BSTR && SUCCEEDED(VariantCopy(&text, &value))) ||
        (IsNumber(value.vt) &&
         SUCCEEDED(VariantChangeTypeEx(&text, &value, LOCALE_INVARIANT, VARIANT_NOUSEROVERRIDE, VT_BSTR)));
    const std::size_t length = given ? std::min(std::size_t{SysStringLen(text.bstrVal)}, kLongestText) : 0;
    return du::WideStrToUtf8({text.bstrVal, length});
}

std::string FieldOf(const ComPtr<IDispatch>& event, std::wstring name) {
    LPOLESTR asked = name.data();
    DISPID id = DISPID_UNKNOWN;
    ScopedVariant value;
    DISPPARAMS none{};
    if (SUCCEEDED(CallOn(event, &IDispatch::GetIDsOfNames, IID_NULL, &asked, 1U, LOCALE_USER_DEFAULT, &id))) {
        CallOn(event, &IDispatch::Invoke, id, IID_NULL, LOCALE_USER_DEFAULT, WORD{DISPATCH_PROPERTYGET},
               &none, &value, nullptr, nullptr);
    }
    return TextOf(value);
}

void TraceError(const ComPtr<IDispatch>& event) {
    std::string line = "Script error:";
    const char* separator = " ";
    for (const wchar_t* field : kFields) {
        line.append(separator).append(du::WideStrToUtf8(field)).append(": ").append(FieldOf(event, field));
        separator = ", ";
    }
    kWebBrowserIETrace.Info() << line;
}

} // namespace

HRESULT ZanWebBrowserIE::Impl::QueryStatus(const GUID* /*group*/, ULONG /*count*/, OLECMD* /*commands*/,
                                           OLECMDTEXT* /*text*/) {
    return OLECMDERR_E_UNKNOWNGROUP;
}

HRESULT ZanWebBrowserIE::Impl::Exec(const GUID* group, DWORD command, DWORD /*option*/, VARIANT* input,
                                    VARIANT* output) {
    if (group == nullptr || *group != kDocHostCommands) {
        return OLECMDERR_E_UNKNOWNGROUP;
    }
    if (command != OLECMDID_SHOWSCRIPTERROR) {
        return OLECMDERR_E_NOTSUPPORTED;
    }
    // Whatever becomes of the line: any other answer brings up the control's own box.
    if (output != nullptr) {
        output->vt = VT_BOOL;
        output->boolVal = VARIANT_TRUE;
    }
    AtComBoundary(
        [&] {
            TraceError(EventOf(ObjectIn(input)));
            return S_OK;
        },
        TraceLegacyException);
    return S_OK;
}

} // namespace kelda
