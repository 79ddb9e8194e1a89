// The objects of the control. Each interface that a container asks for only in passing is an object of its own, so that a
// transcript tells when it is given back.
#include "tests/support/ole/fake_control.h"

#include <utility>
#include <vector>

#include <exdispid.h>
#include <ocidl.h>

#include "testbed/legacy_control/control_stubs.h"
#include "tests/support/fake_object.h"

using Microsoft::WRL::ComPtr;

namespace test_support {
namespace {

constexpr DWORD kCookie = 71;

std::string Describe(const RECT* rect) {
    return rect == nullptr ? "(null)"
                           : std::to_string(rect->left) + "," + std::to_string(rect->top) + " " +
                                 std::to_string(rect->right) + "x" + std::to_string(rect->bottom);
}

std::string Describe(const VARIANT* value) {
    if (value == nullptr) {
        return "(null)";
    }
    return value->vt == VT_UINT ? "unsigned " + std::to_string(value->uintVal)
                                : "type " + std::to_string(value->vt);
}

class FakeEventSource final : public FakeObject<IConnectionPoint> {
  public:
    FakeEventSource(FakeControl& control, const std::string& prefix)
        : FakeObject(prefix + "eventSource"), control_(control), prefix_(prefix) {}

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* /*iid*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** /*all*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** /*all*/) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
        const HRESULT result = control_.script.Call(Name() + ".Advise");
        if (FAILED(result)) {
            return result;
        }
        *cookie = kCookie;
        return sink->QueryInterface(DIID_DWebBrowserEvents2,
                                    reinterpret_cast<void**>(control_.sink.ReleaseAndGetAddressOf()));
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        const HRESULT result = control_.script.Call(Name() + ".Unadvise", std::to_string(cookie));
        if (SUCCEEDED(result) && prefix_ == control_.prefix) {
            control_.sink.Reset();
        }
        return result;
    }

  private:
    FakeControl& control_;
    std::string prefix_;
};

class FakeContainer final : public FakeObject<IConnectionPointContainer> {
  public:
    FakeContainer(FakeControl& control, std::string prefix)
        : FakeObject(prefix + "container"), control_(control), prefix_(std::move(prefix)) {}

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** /*all*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** source) override {
        *source = nullptr;
        const HRESULT result = control_.script.Call(
            Name() + ".FindConnectionPoint", iid == DIID_DWebBrowserEvents2 ? "DWebBrowserEvents2" : "other");
        if (SUCCEEDED(result)) {
            *source = new FakeEventSource(control_, prefix_);
        }
        return result;
    }

  private:
    FakeControl& control_;
    std::string prefix_;
};

class FakeActiveObject final : public FakeObject<IOleInPlaceActiveObject> {
  public:
    FakeActiveObject(const FakeControl& control, std::string name)
        : FakeObject(std::move(name)), control_(control) {}

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* /*window*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL /*enter*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL /*activate*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL /*activate*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT /*border*/, IOleInPlaceUIWindow* /*window*/,
                                           BOOL /*frame*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL /*enable*/) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message) override {
        return control_.script.Call(Name() + ".TranslateAccelerator",
                                    Hexadecimal(message->message) + " " + std::to_string(message->wParam));
    }

  private:
    const FakeControl& control_;
};

class ControlObject final
    : public CountedFake<legacy_control::OleObjectStubs, legacy_control::WebBrowserStubs, IOleInPlaceObject> {
  public:
    ControlObject(FakeControl& control, const std::string& prefix, IOleClientSite* site)
        : CountedFake(prefix + "control"), control_(control), prefix_(prefix), site_(site) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid == IID_IWebBrowser2) {
            return Give("IWebBrowser2", object, [this] { return Self<IWebBrowser2>(); });
        }
        if (iid == IID_IOleInPlaceObject) {
            return Give("IOleInPlaceObject", object, [this] { return Self<IOleInPlaceObject>(); });
        }
        if (iid == IID_IConnectionPointContainer) {
            return Give("IConnectionPointContainer", object, [this]() -> IConnectionPointContainer* {
                return new FakeContainer(control_, prefix_);
            });
        }
        if (iid == IID_IOleInPlaceActiveObject) {
            return Give("IOleInPlaceActiveObject", object, [this]() -> IOleInPlaceActiveObject* {
                return new FakeActiveObject(control_, prefix_ + "activeObject");
            });
        }
        return Give("of something else", object, []() -> IUnknown* { return nullptr; });
    }

    // IOleObject
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index, HWND parent,
                                     LPCRECT position) override {
        const HRESULT result =
            Called("oleObject.DoVerb", std::to_string(verb) + (message == nullptr ? "" : " with a message") +
                                           (site == site_.Get() ? " its site " : " another site ") +
                                           std::to_string(index) + " " + Hexadecimal(HandleToULong(parent)) +
                                           " " + Describe(position));
        if (SUCCEEDED(result)) {
            Activate();
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* size) override {
        return Called("oleObject.SetExtent", std::to_string(aspect) + " " + std::to_string(size->cx) + "x" +
                                                 std::to_string(size->cy));
    }
    HRESULT STDMETHODCALLTYPE Close(DWORD save) override {
        return Called("oleObject.Close", std::to_string(save));
    }
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override {
        const HRESULT result = Called("oleObject.SetClientSite", site == nullptr ? "(null)" : "other");
        if (SUCCEEDED(result)) {
            if (prefix_ == control_.prefix) {
                control_.site = site;
            }
            site_ = site;
        }
        return result;
    }

    // IWebBrowser2
    HRESULT STDMETHODCALLTYPE put_Visible(VARIANT_BOOL visible) override {
        return Called("webBrowser.put_Visible", std::to_string(visible));
    }
    HRESULT STDMETHODCALLTYPE Navigate(BSTR url, VARIANT* flags, VARIANT* frame, VARIANT* data,
                                       VARIANT* headers) override {
        control_.address = Narrow(url);
        return Called("webBrowser.Navigate", Narrow(url) + " " + Describe(flags) + " " + Describe(frame) +
                                                 " " + Describe(data) + " " + Describe(headers));
    }

    // IOleInPlaceObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override {
        const HRESULT result = Called("inPlaceObject.GetWindow");
        if (SUCCEEDED(result)) {
            *window = control_.window;
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL /*enter*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override {
        const HRESULT result = Called("inPlaceObject.InPlaceDeactivate");
        if (SUCCEEDED(result)) {
            Deactivate();
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE UIDeactivate() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT position, LPCRECT clip) override {
        return Called("inPlaceObject.SetObjectRects", Describe(position) + " " + Describe(clip));
    }
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override { return E_NOTIMPL; }

  private:
    HRESULT Called(const std::string& name, const std::string& arguments = {}) const {
        return control_.script.Call(prefix_ + name, arguments);
    }

    template <typename Interface>
    Interface* Self() {
        AddRef();
        return this;
    }

    template <typename Make>
    HRESULT Give(const char* interfaceName, void** object, Make make) {
        HRESULT result = control_.script.Call(Name() + ".QueryInterface", interfaceName);
        if (SUCCEEDED(result)) {
            *object = make();
            result = *object != nullptr ? S_OK : E_NOINTERFACE;
        }
        return result;
    }

    /// Tells the container what the platform's control tells it, in its order.
    void Activate() const {
        const ComPtr<IOleInPlaceSite> place = Place();
        if (!place || place->CanInPlaceActivate() != S_OK) {
            return;
        }
        HWND parent = nullptr;
        place->GetWindow(&parent);
        place->OnInPlaceActivate();
        ComPtr<IOleInPlaceFrame> frame;
        ComPtr<IOleInPlaceUIWindow> document;
        RECT position{};
        RECT clip{};
        OLEINPLACEFRAMEINFO frameInfo{};
        frameInfo.cb = sizeof(frameInfo);
        place->GetWindowContext(frame.GetAddressOf(), document.GetAddressOf(), &position, &clip, &frameInfo);
        site_->ShowObject();
    }

    void Deactivate() const {
        if (const ComPtr<IOleInPlaceSite> place = Place()) {
            place->OnInPlaceDeactivate();
        }
    }

    /// None once the container has taken itself away.
    ComPtr<IOleInPlaceSite> Place() const {
        ComPtr<IOleInPlaceSite> place;
        if (site_) {
            site_->QueryInterface(IID_PPV_ARGS(place.GetAddressOf()));
        }
        return place;
    }

    FakeControl& control_;
    std::string prefix_;
    ComPtr<IOleClientSite> site_;
};

} // namespace

HRESULT FakeControl::Raise(DISPID id, std::initializer_list<VARIANTARG> arguments) const {
    std::vector<VARIANTARG> reversed(std::rbegin(arguments), std::rend(arguments));
    DISPPARAMS parameters{};
    parameters.rgvarg = reversed.data();
    parameters.cArgs = static_cast<UINT>(reversed.size());
    const ComPtr<IDispatch> listener = sink; // it may disconnect meanwhile
    return listener ? listener->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                       nullptr, nullptr, nullptr)
                    : E_UNEXPECTED;
}

HRESULT FakeControl::Make(REFCLSID classId, REFIID iid, DWORD render, const FORMATETC* format,
                          IOleClientSite* container, IStorage* place, void** object) {
    *object = nullptr;
    const HRESULT result = script.Call(
        "OleCreate", std::string(classId == CLSID_WebBrowser ? "WebBrowser " : "something else ") +
                         (iid == IID_IOleObject ? "IOleObject " : "by another interface ") +
                         std::to_string(render) + (format == nullptr ? "" : " with a format"));
    if (FAILED(result)) {
        return result;
    }
    site = container;
    storage = place;
    *object = static_cast<IOleObject*>(new ControlObject(*this, prefix, container));
    return S_OK;
}

} // namespace test_support
