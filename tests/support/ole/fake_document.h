// Fakes of a page's document, of its window and of the event that the window is just raising.
#pragma once

#include <map>
#include <string>
#include <utility>

#include <windows.h>

#include <mshtml.h>
#include <oleauto.h>

#include "testbed/legacy_control/document_stubs.h"
#include "tests/support/call_script.h"
#include "tests/support/fake_object.h"

namespace test_support {

/// What a field holds, until it is given something else.
struct FakeField : VARIANT {
    FakeField() : VARIANT{} { VariantInit(this); }
    ~FakeField() { VariantClear(this); }
    FakeField(const FakeField&) = delete;
    FakeField& operator=(const FakeField&) = delete;

    FakeField& operator=(const wchar_t* text) {
        VariantClear(this);
        vt = VT_BSTR;
        bstrVal = SysAllocString(text);
        return *this;
    }
    FakeField& operator=(LONG number) {
        VariantClear(this);
        vt = VT_I4;
        lVal = number;
        return *this;
    }
};

/// An event whose fields are read by their names. Their ids count from 1 in the order in which they are asked for.
class FakeEvent final : public CountedFake<legacy_control::EventStubs> {
  public:
    using Fields = std::map<std::wstring, FakeField>;

    FakeEvent(CallScript& script, Fields& fields) : CountedFake("event"), script_(script), fields_(fields) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IDispatch) {
            return E_NOINTERFACE;
        }
        const HRESULT result = script_.Call("event.QueryInterface", "IDispatch");
        if (SUCCEEDED(result)) {
            AddRef();
            *object = static_cast<IDispatch*>(this);
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*iid*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                            DISPID* ids) override {
        const HRESULT result = script_.Call("event.GetIDsOfNames", Narrow(names[0]));
        if (FAILED(result)) {
            return result;
        }
        if (count != 1 || !fields_.contains(names[0])) {
            return DISP_E_UNKNOWNNAME;
        }
        asked_.emplace(static_cast<DISPID>(asked_.size() + 1), names[0]);
        ids[0] = static_cast<DISPID>(asked_.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID /*iid*/, LCID /*locale*/, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* value, EXCEPINFO* /*exception*/,
                                     UINT* /*wrongArgument*/) override {
        const std::wstring& name = asked_.at(id);
        const HRESULT result = script_.Call(
            "event.Invoke", Narrow(name.c_str()) + " " + std::to_string(flags) +
                                (parameters != nullptr && parameters->cArgs == 0 ? "" : " with arguments"));
        return FAILED(result) ? result : VariantCopy(value, &fields_.at(name));
    }

  private:
    CallScript& script_;
    Fields& fields_;
    std::map<DISPID, std::wstring> asked_;
};

class FakeWindow final : public CountedFake<legacy_control::WindowStubs> {
  public:
    FakeWindow(CallScript& script, FakeEvent::Fields& fields)
        : CountedFake("window"), script_(script), fields_(fields) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE get_event(IHTMLEventObj** event) override {
        *event = nullptr;
        const HRESULT result = script_.Call("window.get_event");
        if (SUCCEEDED(result)) {
            *event = new FakeEvent(script_, fields_);
        }
        return result;
    }

  private:
    CallScript& script_;
    FakeEvent::Fields& fields_;
};

class FakeDocument final : public CountedFake<legacy_control::DocumentStubs> {
  public:
    /// @param fields  Of the event; not owned.
    FakeDocument(CallScript& script, FakeEvent::Fields& fields)
        : CountedFake("document"), script_(script), fields_(fields) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IHTMLDocument2) {
            return E_NOINTERFACE;
        }
        const HRESULT result = script_.Call("document.QueryInterface", "IHTMLDocument2");
        if (SUCCEEDED(result)) {
            AddRef();
            *object = static_cast<IHTMLDocument2*>(this);
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE get_parentWindow(IHTMLWindow2** window) override {
        *window = nullptr;
        const HRESULT result = script_.Call("document.get_parentWindow");
        if (SUCCEEDED(result)) {
            *window = new FakeWindow(script_, fields_);
        }
        return result;
    }

  private:
    CallScript& script_;
    FakeEvent::Fields& fields_;
};

} // namespace test_support
