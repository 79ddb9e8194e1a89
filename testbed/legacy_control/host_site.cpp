// What the host is asked and told, apart from events and from being in place.
#include "host_site.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "com_object.h"
#include "testbed/chromium/text.h"
#include "variant.h"

namespace legacy_control {
namespace {

using Microsoft::WRL::ComPtr;
using nlohmann::json;

constexpr GUID kDocumentHostCommands = {
    0xF38BC242, 0xB950, 0x11D1, {0x89, 0x18, 0x00, 0xC0, 0x4F, 0xC2, 0xC8, 0x36}};
constexpr DWORD kShowScriptError = 40;

/// What the host prefers changes nothing here.
void ReadPreferences(IDocHostUIHandler* handler) {
    DOCHOSTUIINFO information{};
    information.cbSize = sizeof(information);
    if (handler != nullptr && SUCCEEDED(handler->GetHostInfo(&information))) {
        CoTaskMemFree(information.pchHostCss);
        CoTaskMemFree(information.pchHostNS);
    }
}

/// Frees the texts that a call has left.
class ExceptionInfo {
  public:
    ExceptionInfo() = default;
    ~ExceptionInfo() {
        SysFreeString(info_.bstrSource);
        SysFreeString(info_.bstrDescription);
        SysFreeString(info_.bstrHelpFile);
    }
    ExceptionInfo(const ExceptionInfo&) = delete;
    ExceptionInfo& operator=(const ExceptionInfo&) = delete;

    EXCEPINFO* Receive() { return &info_; }

  private:
    EXCEPINFO info_{};
};

} // namespace

HostSite::HostSite(IOleClientSite* site)
    : site_(site), handler_(Query<IDocHostUIHandler>(site)), commands_(Query<IOleCommandTarget>(site)) {
    ReadPreferences(handler_.Get());
}

ComPtr<IOleInPlaceSite> HostSite::InPlaceSite() const {
    return Query<IOleInPlaceSite>(site_.Get());
}

void HostSite::CallExternal(const std::string& name, const json& arguments) const {
    ComPtr<IDispatch> external;
    if (!handler_ || FAILED(handler_->GetExternal(external.GetAddressOf())) || !external) {
        return;
    }
    std::wstring wide = testbed::chromium::ToUtf16(name);
    LPOLESTR text = wide.data();
    DISPID member = DISPID_UNKNOWN;
    if (FAILED(external->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member))) {
        return;
    }
    std::vector<Variant> owners;
    std::ranges::transform(arguments, std::back_inserter(owners), &VariantFromJson);
    std::vector<VARIANTARG> values; // borrowed from the owners; the last one first
    std::ranges::transform(owners, std::back_inserter(values), &Variant::Get);
    std::ranges::reverse(values);
    DISPPARAMS parameters{};
    parameters.rgvarg = values.data();
    parameters.cArgs = static_cast<UINT>(values.size());
    Variant result;
    ExceptionInfo exception;
    UINT badArgument = 0;
    external->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result.Receive(),
                     exception.Receive(), &badArgument);
}

bool HostSite::TakesScriptError(IHTMLDocument2* document) const {
    if (!commands_) {
        return false;
    }
    Variant in;
    V_VT(in.Receive()) = VT_UNKNOWN;
    V_UNKNOWN(in.Receive()) = document;
    document->AddRef();
    Variant out;
    return commands_->Exec(&kDocumentHostCommands, kShowScriptError, OLECMDEXECOPT_DODEFAULT, in.Receive(),
                           out.Receive()) == S_OK &&
           V_VT(&out.Get()) == VT_BOOL && V_BOOL(&out.Get()) != VARIANT_FALSE;
}

} // namespace legacy_control
