// An IBinding whose answers a test decides, with or without the HTTP side that real bindings have.
#pragma once

#include <functional>
#include <string>

#include <urlmon.h>

#include "tests/support/fake_object.h"

namespace test_support {

class FakeBinding final : public FakeObject<IBinding, IWinInetHttpInfo> {
  public:
    explicit FakeBinding(std::string name = "binding") : FakeObject(std::move(name)) {}

    bool hasHttpInfo = false;
    HRESULT bindResult = S_OK;
    LPOLESTR bindResultText = nullptr;
    std::function<HRESULT(DWORD option, void* buffer, DWORD* size)> queryInfo;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (hasHttpInfo && iid == IID_IWinInetHttpInfo) {
            Record("query IWinInetHttpInfo");
            *object = static_cast<IWinInetHttpInfo*>(this);
            AddRef();
            return S_OK;
        }
        return FakeObject::QueryInterface(iid, object);
    }

    HRESULT STDMETHODCALLTYPE Abort() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Suspend() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Resume() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPriority(LONG /*priority*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* /*priority*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBindResult(CLSID* /*protocol*/, DWORD* /*result*/, LPOLESTR* text,
                                            DWORD* reserved) override {
        Record(std::string("GetBindResult") + (reserved == nullptr ? "" : " with reserved"));
        *text = bindResultText;
        return bindResult;
    }

    HRESULT STDMETHODCALLTYPE QueryOption(DWORD /*option*/, LPVOID /*buffer*/, DWORD* /*size*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE QueryInfo(DWORD option, LPVOID buffer, DWORD* size, DWORD* flags,
                                        DWORD* reserved) override {
        Record("QueryInfo " + Hexadecimal(option) +
               (buffer == nullptr ? " for the size" : " into " + std::to_string(*size) + " bytes") +
               (flags == nullptr && reserved == nullptr ? "" : " with flags"));
        return queryInfo(option, buffer, size);
    }
};

} // namespace test_support
