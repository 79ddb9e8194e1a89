// A WebBrowser control whose every step a test takes itself: what the container sees of it, and what it has of the container.
#pragma once

#include <initializer_list>
#include <string>

#include <windows.h>

#include <exdisp.h>
#include <ole2.h>
#include <wrl/client.h>

#include "tests/support/call_script.h"
#include "tests/support/replaced_import.h"

namespace test_support {

/// Stands where OleCreate would make the control. There may be one at a time.
///
/// Its calls are named by the interface: "oleObject.DoVerb", "webBrowser.Navigate", "inPlaceObject.SetObjectRects",
/// "container.FindConnectionPoint", "eventSource.Advise", "activeObject.TranslateAccelerator"; the queries for these are
/// "control.QueryInterface IWebBrowser2".
class FakeControl {
  public:
    CallScript script;

    /// Stands before the names of a control that is made from now on, to tell it from others.
    std::string prefix;

    /// The window of the activated control.
    HWND window = reinterpret_cast<HWND>(0x4713);

    // Of the control that was made last.

    /// Its container, until that takes itself away.
    Microsoft::WRL::ComPtr<IOleClientSite> site;

    /// What it was to be stored in. It keeps no reference.
    IStorage* storage = nullptr;

    /// What hears its events.
    Microsoft::WRL::ComPtr<IDispatch> sink;

    /// Where it navigated to last.
    std::string address;

    /// Tells the sink of an event.
    /// @param arguments  As the platform names them: in their order, which is the other way round in the call.
    HRESULT Raise(DISPID id, std::initializer_list<VARIANTARG> arguments = {}) const;

    /// The container by another of its interfaces.
    template <typename Interface>
    Microsoft::WRL::ComPtr<Interface> Site() const {
        Microsoft::WRL::ComPtr<Interface> other;
        if (site) {
            site->QueryInterface(IID_PPV_ARGS(other.GetAddressOf()));
        }
        return other;
    }

  private:
    HRESULT Make(REFCLSID classId, REFIID iid, DWORD render, const FORMATETC* format,
                 IOleClientSite* container, IStorage* place, void** object);

    ReplacedImport<struct MakeControl, decltype(OleCreate)> oleCreate_{
        "ole32.dll", "OleCreate",
        [this](REFCLSID classId, REFIID iid, DWORD render, LPFORMATETC format, LPOLECLIENTSITE container,
               LPSTORAGE place,
               LPVOID* object) { return Make(classId, iid, render, format, container, place, object); }};
    ReplacedImport<struct LockControl, decltype(OleLockRunning)> oleLockRunning_{
        "ole32.dll", "OleLockRunning", [this](LPUNKNOWN object, BOOL lock, BOOL last) {
            return script.Call("OleLockRunning", std::string(object != nullptr ? "the control " : "(null) ") +
                                                     std::to_string(lock) + " " + std::to_string(last));
        }};
};

} // namespace test_support
