// Writing down, and reading a script's error as hosts do: by the document in the command's argument.
#include "tests/unit/legacy_control/recording_host.h"

#include <algorithm>
#include <set>
#include <utility>

#include <exdispid.h>
#include <gtest/gtest.h>
#include <mshtml.h>
#include <wrl/client.h>

#include "testbed/chromium/text.h"

namespace legacy_control_test {
namespace {

using Microsoft::WRL::ComPtr;
using testbed::chromium::ToUtf8;

constexpr GUID kDocumentHostCommands = {
    0xF38BC242, 0xB950, 0x11D1, {0x89, 0x18, 0x00, 0xC0, 0x4F, 0xC2, 0xC8, 0x36}};

std::string KindOf(const VARIANT& value) {
    switch (V_VT(&value)) {
    case VT_EMPTY:
        return "empty";
    case VT_NULL:
        return "null";
    case VT_BSTR:
        return "text";
    case VT_I4:
        return "number";
    case VT_R8:
        return "real";
    case VT_BOOL:
        return "truth";
    case VT_DISPATCH:
        return "object";
    case VT_BYREF | VT_BOOL:
        return "&truth";
    case VT_BYREF | VT_VARIANT:
        return "&" + KindOf(*V_VARIANTREF(&value));
    default:
        return "kind " + std::to_string(V_VT(&value));
    }
}

std::string TextOf(VARIANT& value) {
    if (V_VT(&value) == (VT_BYREF | VT_VARIANT)) {
        return TextOf(*V_VARIANTREF(&value));
    }
    VARIANT text{};
    if (V_VT(&value) == VT_DISPATCH || FAILED(VariantChangeType(&text, &value, VARIANT_ALPHABOOL, VT_BSTR))) {
        return {};
    }
    std::string result = V_BSTR(&text) == nullptr ? std::string() : ToUtf8(V_BSTR(&text));
    VariantClear(&text);
    return result;
}

RecordedCall Record(DISPID member, WORD flags, const DISPPARAMS& parameters) {
    RecordedCall call{.member = member, .flags = flags, .kinds = {}, .values = {}};
    for (UINT argument = parameters.cArgs; argument > 0; --argument) {
        call.kinds.push_back(KindOf(parameters.rgvarg[argument - 1]));
        call.values.push_back(TextOf(parameters.rgvarg[argument - 1]));
    }
    return call;
}

/// "name=value", or why there is no value.
std::string Member(IDispatch* object, const wchar_t* name) {
    std::wstring wide = name;
    LPOLESTR text = wide.data();
    DISPID member = 0;
    VARIANT value{};
    DISPPARAMS none{};
    if (object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member) != S_OK ||
        object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value, nullptr,
                       nullptr) != S_OK) {
        return ToUtf8(wide) + " is missing";
    }
    std::string result = ToUtf8(wide) + "=" + KindOf(value) + " " + TextOf(value);
    VariantClear(&value);
    return result;
}

std::string ErrorIn(IUnknown* object) {
    ComPtr<IHTMLDocument2> document;
    ComPtr<IHTMLWindow2> window;
    ComPtr<IHTMLEventObj> event;
    if (FAILED(object->QueryInterface(__uuidof(IHTMLDocument2),
                                      reinterpret_cast<void**>(document.GetAddressOf()))) ||
        FAILED(document->get_parentWindow(window.GetAddressOf())) ||
        FAILED(window->get_event(event.GetAddressOf())) || !event) {
        return "no event";
    }
    std::string all;
    for (const wchar_t* name :
         {L"errorUrl", L"errorMessage", L"errorCode", L"errorLine", L"errorCharacter"}) {
        all += (all.empty() ? "" : ", ") + Member(event.Get(), name);
    }
    return all;
}

} // namespace

HRESULT CountedDispatch::QueryInterface(REFIID id, void** object) {
    asked_.push_back(id);
    if (id != IID_IUnknown && id != IID_IDispatch && id != DIID_DWebBrowserEvents2) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

HRESULT CountedDispatch::GetTypeInfoCount(UINT* /*count*/) {
    return E_NOTIMPL;
}

HRESULT CountedDispatch::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*information*/) {
    return E_NOTIMPL;
}

HRESULT CountedDispatch::GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT /*count*/, LCID /*locale*/,
                                       DISPID* found) {
    const auto member =
        std::ranges::find(members, std::wstring(names[0]), &std::pair<std::wstring, DISPID>::first);
    *found = member == members.end() ? DISPID_UNKNOWN : member->second;
    return member == members.end() ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT CountedDispatch::Invoke(DISPID member, REFIID /*id*/, LCID /*locale*/, WORD flags,
                                DISPPARAMS* parameters, VARIANT* /*result*/, EXCEPINFO* /*exception*/,
                                UINT* /*badArgument*/) {
    called_(member, flags, parameters);
    return S_OK;
}

RecordingHost::RecordingHost()
    : sink([this](DISPID member, WORD flags, DISPPARAMS* parameters) { OnEvent(member, flags, parameters); }),
      external([this](DISPID member, WORD flags, DISPPARAMS* parameters) {
          scriptCalls.push_back(Record(member, flags, *parameters));
          Note("external");
      }) {}

void RecordingHost::Note(const std::string& call) {
    calls.push_back(call);
    if (onCall) {
        onCall(call);
    }
}

void RecordingHost::OnEvent(DISPID member, WORD flags, DISPPARAMS* parameters) {
    const RecordedCall event = Record(member, flags, *parameters);
    events.push_back(event);
    if (cancels && cancels(event)) {
        *V_BOOLREF(&parameters->rgvarg[0]) = VARIANT_TRUE;
    }
    if (onCall) {
        onCall("event " + std::to_string(member));
    }
}

std::vector<DISPID> RecordingHost::Steps() const {
    const std::set<DISPID> left = {DISPID_COMMANDSTATECHANGE, DISPID_PROGRESSCHANGE, DISPID_STATUSTEXTCHANGE};
    std::vector<DISPID> steps;
    for (const RecordedCall& event : events) {
        if (!left.contains(event.member)) {
            steps.push_back(event.member);
        }
    }
    return steps;
}

const RecordedCall* RecordingHost::Find(DISPID event) const {
    const auto found = std::ranges::find(events, event, &RecordedCall::member);
    return found == events.end() ? nullptr : &*found;
}

std::size_t RecordingHost::Count(DISPID event) const {
    return static_cast<std::size_t>(std::ranges::count(events, event, &RecordedCall::member));
}

HRESULT RecordingHost::QueryInterface(REFIID id, void** object) {
    if (id == IID_IUnknown || id == IID_IOleClientSite) {
        *object = static_cast<IOleClientSite*>(this);
    } else if (id == IID_IOleInPlaceSite || id == IID_IOleWindow) {
        *object = static_cast<IOleInPlaceSite*>(this);
    } else if (id == __uuidof(IDocHostUIHandler)) {
        *object = static_cast<IDocHostUIHandler*>(this);
    } else if (id == IID_IOleCommandTarget && hasCommands) {
        *object = static_cast<IOleCommandTarget*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

// --- IOleClientSite

HRESULT RecordingHost::SaveObject() {
    return E_NOTIMPL;
}

HRESULT RecordingHost::GetMoniker(DWORD /*assign*/, DWORD /*which*/, IMoniker** moniker) {
    *moniker = nullptr;
    return E_NOTIMPL;
}

HRESULT RecordingHost::GetContainer(IOleContainer** container) {
    *container = nullptr;
    Note("GetContainer");
    return E_NOINTERFACE;
}

HRESULT RecordingHost::ShowObject() {
    Note("ShowObject");
    return S_OK;
}

HRESULT RecordingHost::OnShowWindow(BOOL /*show*/) {
    return S_OK;
}

HRESULT RecordingHost::RequestNewObjectLayout() {
    return E_NOTIMPL;
}

// --- IOleInPlaceSite

HRESULT RecordingHost::GetWindow(HWND* found) {
    *found = window;
    Note("GetWindow");
    return S_OK;
}

HRESULT RecordingHost::ContextSensitiveHelp(BOOL /*enter*/) {
    return E_NOTIMPL;
}

HRESULT RecordingHost::CanInPlaceActivate() {
    Note("CanInPlaceActivate");
    return S_OK;
}

HRESULT RecordingHost::OnInPlaceActivate() {
    Note("OnInPlaceActivate");
    return S_OK;
}

HRESULT RecordingHost::OnUIActivate() {
    Note("OnUIActivate");
    return S_OK;
}

HRESULT RecordingHost::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                        LPRECT placed, LPRECT clip, LPOLEINPLACEFRAMEINFO information) {
    *frame = nullptr;
    *document = nullptr;
    *placed = position;
    *clip = position;
    frameInformationSize = information->cb;
    information->fMDIApp = FALSE;
    information->hwndFrame = GetAncestor(window, GA_ROOT);
    information->haccel = nullptr;
    information->cAccelEntries = 0;
    Note("GetWindowContext");
    return S_OK;
}

HRESULT RecordingHost::Scroll(SIZE /*extent*/) {
    return E_NOTIMPL;
}

HRESULT RecordingHost::OnUIDeactivate(BOOL /*undoable*/) {
    Note("OnUIDeactivate");
    return S_OK;
}

HRESULT RecordingHost::OnInPlaceDeactivate() {
    Note("OnInPlaceDeactivate");
    return S_OK;
}

HRESULT RecordingHost::DiscardUndoState() {
    return E_NOTIMPL;
}

HRESULT RecordingHost::DeactivateAndUndo() {
    return E_NOTIMPL;
}

HRESULT RecordingHost::OnPosRectChange(LPCRECT /*placed*/) {
    return E_NOTIMPL;
}

// --- IDocHostUIHandler

HRESULT RecordingHost::ShowContextMenu(DWORD /*id*/, POINT* /*point*/, IUnknown* /*target*/,
                                       IDispatch* /*object*/) {
    return S_OK;
}

HRESULT RecordingHost::GetHostInfo(DOCHOSTUIINFO* information) {
    information->dwFlags = DOCHOSTUIFLAG_ENABLE_FORMS_AUTOCOMPLETE;
    Note("GetHostInfo");
    return S_OK;
}

HRESULT RecordingHost::ShowUI(DWORD /*id*/, IOleInPlaceActiveObject* /*object*/,
                              IOleCommandTarget* /*target*/, IOleInPlaceFrame* /*frame*/,
                              IOleInPlaceUIWindow* /*document*/) {
    return S_OK;
}

HRESULT RecordingHost::HideUI() {
    return S_OK;
}

HRESULT RecordingHost::UpdateUI() {
    return S_OK;
}

HRESULT RecordingHost::EnableModeless(BOOL /*enable*/) {
    return S_OK;
}

HRESULT RecordingHost::OnDocWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT RecordingHost::OnFrameWindowActivate(BOOL /*activate*/) {
    return S_OK;
}

HRESULT RecordingHost::ResizeBorder(LPCRECT /*border*/, IOleInPlaceUIWindow* /*target*/, BOOL /*isFrame*/) {
    return S_OK;
}

HRESULT RecordingHost::TranslateAccelerator(LPMSG /*message*/, const GUID* /*group*/, DWORD /*id*/) {
    return S_FALSE;
}

HRESULT RecordingHost::GetOptionKeyPath(LPOLESTR* /*key*/, DWORD /*reserved*/) {
    return S_FALSE;
}

HRESULT RecordingHost::GetDropTarget(IDropTarget* /*target*/, IDropTarget** /*own*/) {
    return E_NOTIMPL;
}

HRESULT RecordingHost::GetExternal(IDispatch** object) {
    *object = &external;
    external.AddRef();
    Note("GetExternal");
    return S_OK;
}

HRESULT RecordingHost::TranslateUrl(DWORD /*translate*/, LPWSTR /*url*/, LPWSTR* /*translated*/) {
    return S_FALSE;
}

HRESULT RecordingHost::FilterDataObject(IDataObject* /*object*/, IDataObject** /*filtered*/) {
    return S_FALSE;
}

// --- IOleCommandTarget

HRESULT RecordingHost::QueryStatus(const GUID* /*group*/, ULONG /*count*/, OLECMD* /*commands*/,
                                   OLECMDTEXT* /*text*/) {
    return OLECMDERR_E_UNKNOWNGROUP;
}

HRESULT RecordingHost::Exec(const GUID* group, DWORD id, DWORD /*option*/, VARIANT* in, VARIANT* out) {
    EXPECT_TRUE(group != nullptr && *group == kDocumentHostCommands);
    EXPECT_EQ(id, 40U);
    scriptErrors.push_back(ErrorIn(V_UNKNOWN(in)));
    V_VT(out) = VT_BOOL;
    V_BOOL(out) = commandOutput ? VARIANT_TRUE : VARIANT_FALSE;
    Note("Exec");
    return commandResult;
}

} // namespace legacy_control_test
