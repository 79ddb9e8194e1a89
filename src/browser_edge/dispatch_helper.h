// What the page gets from the host object's only member: an object to be called as a function.
#pragma once

#include <cstdint>

#include <windows.h>

#include <oaidl.h>

/// Calls its `AuthCallback` when script calls it. Owned by the browser, which is what its count never decides about:
/// `Release` deletes nothing. Single-threaded.
class ZanWebBrowserDispatchHelper final : public IDispatch {
  public:
    /// Who learns of the page's call.
    class AuthCallback {
      public:
        virtual void OnSessionAuthenticated() = 0;

      protected:
        AuthCallback() = default;
        ~AuthCallback() = default;
        AuthCallback(const AuthCallback&) = default;
        AuthCallback& operator=(const AuthCallback&) = default;
    };

    /// @param callback  Not owned; must outlive this object.
    explicit ZanWebBrowserDispatchHelper(AuthCallback* callback) : callback_(callback) {}
    virtual ~ZanWebBrowserDispatchHelper() = default;
    ZanWebBrowserDispatchHelper(const ZanWebBrowserDispatchHelper&) = delete;
    ZanWebBrowserDispatchHelper& operator=(const ZanWebBrowserDispatchHelper&) = delete;

    /// Answers `IID_IDispatch` only, not even `IID_IUnknown`.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() override { return --count_; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT nameCount, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrongArgument) override;

  private:
    AuthCallback* callback_;
    std::uint32_t count_ = 0;
};
