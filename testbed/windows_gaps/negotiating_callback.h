// Stands between urlmon and a caller's bind callback: answers Basic challenges with what the caller's `IAuthenticate`
// offers, and ends a bind whose caller refuses the answer. The caller sees one bind, however many attempts it takes.
#pragma once

#include <string>

#include <servprov.h>
#include <urlmon.h>
#include <wrl/client.h>

#include "bind_info_copy.h"
#include "binding_proxy.h"
#include "challenge_header.h"
#include "com_object.h"
#include "offered_credentials.h"

namespace windows_gaps {

/// One bind of one caller; lives and is called on its thread. An asynchronous bind passes through untouched.
class NegotiatingCallback final : public ComObject<IBindStatusCallbackEx, IHttpNegotiate, IServiceProvider> {
  public:
    /// To be told before the bind starts.
    void Serve(IBindStatusCallback* caller) { caller_ = caller; }

    /// After an attempt: whether it met a challenge for which there are credentials now.
    bool MustRepeat() const { return state_ == State::Repeating; }

    /// Starts over, with what was offered.
    void BeginNextAttempt() { state_ = State::Delivering; }
    const OfferedCredentials& Credentials() const { return credentials_; }

    /// Where redirects have led so far; empty without any.
    const std::wstring& Location() const { return location_; }

    /// After the last attempt, with its result. Tells the caller if nobody has yet.
    /// @return what the whole bind comes to.
    HRESULT EndBind(HRESULT result);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD reserved, IBinding* binding) override;
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* priority) override;
    HRESULT STDMETHODCALLTYPE OnLowResource(DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE OnProgress(ULONG progress, ULONG progressMax, ULONG code,
                                         LPCWSTR text) override;
    HRESULT STDMETHODCALLTYPE OnStopBinding(HRESULT result, LPCWSTR error) override;
    HRESULT STDMETHODCALLTYPE GetBindInfo(DWORD* flags, BINDINFO* info) override;
    HRESULT STDMETHODCALLTYPE OnDataAvailable(DWORD flags, DWORD size, FORMATETC* format,
                                              STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE OnObjectAvailable(REFIID iid, IUnknown* object) override;
    HRESULT STDMETHODCALLTYPE GetBindInfoEx(DWORD* flags, BINDINFO* info, DWORD* flags2,
                                            DWORD* reserved) override;

    HRESULT STDMETHODCALLTYPE BeginningTransaction(LPCWSTR url, LPCWSTR headers, DWORD reserved,
                                                   LPWSTR* additionalHeaders) override;
    HRESULT STDMETHODCALLTYPE OnResponse(DWORD code, LPCWSTR responseHeaders, LPCWSTR requestHeaders,
                                         LPWSTR* additionalHeaders) override;

    HRESULT STDMETHODCALLTYPE QueryService(REFGUID service, REFIID iid, void** object) override;

  private:
    enum class State {
        Delivering, ///< what happens is the caller's to see
        Repeating,  ///< the attempt has ended in a challenge; the caller sees nothing of its end
        Failed,     ///< the bind ends with `failure_`; the caller sees that it stops and nothing else
    };

    template <typename Service>
    Microsoft::WRL::ComPtr<Service> FindService() const;
    bool MayAsk(DWORD code, LPCWSTR responseHeaders);
    HRESULT Ask(IAuthenticate& authenticate);
    HRESULT EndAttempt(State state, HRESULT failure);
    HRESULT RepeatHeaders(LPWSTR* additionalHeaders) const;

    Microsoft::WRL::ComPtr<IBindStatusCallback> caller_;
    Microsoft::WRL::ComPtr<IHttpNegotiate> negotiate_; // the caller's
    Microsoft::WRL::ComPtr<BindingProxy> proxy_;       // of a synchronous bind that has started
    BindInfoCopy bindInfo_;
    DWORD bindFlags2_ = 0;
    bool begun_ = false;
    std::wstring additionalHeaders_;
    std::wstring location_;
    int questions_ = 0;
    BasicChallenge challenge_ = BasicChallenge::None;
    OfferedCredentials credentials_;
    State state_ = State::Delivering;
    HRESULT failure_ = S_OK;
    bool stopped_ = false;
};

} // namespace windows_gaps
