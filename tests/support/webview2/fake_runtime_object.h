// What the fakes of the WebView2 interfaces have in common.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <windows.h>

#include "tests/support/call_script.h"
#include "tests/support/fake_object.h"
#include "webview2_not_implemented.h"

namespace test_support {

/// One of the interfaces by which a fake is asked for a later view of itself.
struct View {
    IID iid;
    const char* interfaceName;
    const char* objectName;
};

/// A fake of `Interface` and of all its bases. Every view of one runtime object is a fake of its own, so that a
/// transcript tells through which view a call was made.
template <typename Interface>
class FakeRuntimeObject : public CountedFake<webview2::NotImplemented<Interface>> {
  public:
    FakeRuntimeObject(CallScript& script, std::string name)
        : CountedFake<webview2::NotImplemented<Interface>>(std::move(name)), script_(script) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid == IID_IUnknown || iid == __uuidof(Interface)) {
            *object = static_cast<Interface*>(this);
            this->AddRef();
            return S_OK;
        }
        return E_NOINTERFACE;
    }

  protected:
    CallScript& Script() const { return script_; }

    /// The scripted answer to a call of this object, recorded.
    HRESULT Called(const std::string& method, const std::string& arguments = {}) const {
        return script_.Call(this->Name() + "." + method, arguments);
    }

    /// The same for a call that yields an object when it succeeds.
    template <typename Make, typename Out>
    HRESULT GiveObject(const std::string& method, const std::string& arguments, Make make, Out** out) const {
        *out = nullptr;
        const HRESULT result = Called(method, arguments);
        if (SUCCEEDED(result)) {
            *out = make();
        }
        return result;
    }

    /// The answer to a query for one of `views`, each of which is a new `Fake` made by `make(name)`.
    template <typename Views, typename Make>
    HRESULT QueryViews(const Views& views, REFIID iid, void** object, Make make) {
        for (const View& view : views) {
            if (iid == view.iid) {
                Interface* made = nullptr;
                const HRESULT result = GiveObject(
                    "QueryInterface", view.interfaceName, [&] { return make(view.objectName); }, &made);
                *object = made;
                return result;
            }
        }
        return FakeRuntimeObject::QueryInterface(iid, object);
    }

  private:
    CallScript& script_;
};

} // namespace test_support
