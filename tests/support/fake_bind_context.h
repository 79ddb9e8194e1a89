// An IBindCtx that does nothing but be held and released.
#pragma once

#include <string>
#include <utility>

#include <objidl.h>

#include "tests/support/fake_object.h"

namespace test_support {

class FakeBindContext final : public FakeObject<IBindCtx> {
  public:
    explicit FakeBindContext(std::string name = "context") : FakeObject(std::move(name)) {}

    HRESULT STDMETHODCALLTYPE RegisterObjectBound(IUnknown* /*object*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RevokeObjectBound(IUnknown* /*object*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ReleaseBoundObjects() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetBindOptions(BIND_OPTS* /*options*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBindOptions(BIND_OPTS* /*options*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetRunningObjectTable(IRunningObjectTable** /*table*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RegisterObjectParam(LPOLESTR /*key*/, IUnknown* /*object*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetObjectParam(LPOLESTR /*key*/, IUnknown** /*object*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumObjectParam(IEnumString** /*keys*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RevokeObjectParam(LPOLESTR /*key*/) override { return E_NOTIMPL; }
};

} // namespace test_support
