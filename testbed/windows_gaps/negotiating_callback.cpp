// How a bind looks to its caller: each method tells urlmon's calls that are the caller's to see from those that are not.
#include "negotiating_callback.h"

#include <cstring>
#include <new>
#include <string_view>

#include <wininet.h>

#include "basic_authorization.h"

using Microsoft::WRL::ComPtr;

namespace windows_gaps {
namespace {

/// As often as browsers on Windows ask.
constexpr int kMostQuestions = 3;

/// Appends to a text that has the room, and terminates it.
wchar_t* Append(wchar_t* end, std::wstring_view text) {
    std::memcpy(end, text.data(), text.size() * sizeof(wchar_t));
    end[text.size()] = L'\0';
    return end + text.size();
}

} // namespace

/// The way in which urlmon looks for what a callback offers.
template <typename Service>
ComPtr<Service> NegotiatingCallback::FindService() const {
    ComPtr<Service> service;
    if (FAILED(caller_.As(&service))) {
        ComPtr<IServiceProvider> provider;
        if (SUCCEEDED(caller_.As(&provider))) {
            provider->QueryService(__uuidof(Service), IID_PPV_ARGS(&service));
        }
    }
    return service;
}

HRESULT NegotiatingCallback::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IBindStatusCallback) {
        *object = static_cast<IBindStatusCallback*>(this);
    } else if (iid == IID_IHttpNegotiate) {
        *object = static_cast<IHttpNegotiate*>(this);
    } else if (iid == IID_IServiceProvider) {
        *object = static_cast<IServiceProvider*>(this);
    } else if (caller_ == nullptr) {
        return E_NOINTERFACE;
    } else if (iid == IID_IBindStatusCallbackEx) {
        ComPtr<IBindStatusCallbackEx> extended;
        if (FAILED(caller_.As(&extended))) {
            return E_NOINTERFACE;
        }
        *object = static_cast<IBindStatusCallbackEx*>(this);
    } else {
        return caller_->QueryInterface(iid, object);
    }
    AddRef();
    return S_OK;
}

HRESULT NegotiatingCallback::QueryService(REFGUID service, REFIID iid, void** object) {
    *object = nullptr;
    ComPtr<IServiceProvider> provider;
    if (caller_ == nullptr || FAILED(caller_.As(&provider))) {
        return E_NOINTERFACE;
    }
    return provider->QueryService(service, iid, object);
}

HRESULT NegotiatingCallback::GetBindInfo(DWORD* flags, BINDINFO* info) {
    if (bindInfo_.Kept()) {
        return bindInfo_.Give(flags, info);
    }
    const HRESULT result = caller_->GetBindInfo(flags, info);
    return SUCCEEDED(result) ? bindInfo_.Keep(*flags, *info) : result;
}

HRESULT NegotiatingCallback::GetBindInfoEx(DWORD* flags, BINDINFO* info, DWORD* flags2, DWORD* reserved) {
    if (bindInfo_.Kept()) {
        *flags2 = bindFlags2_;
        return bindInfo_.Give(flags, info);
    }
    ComPtr<IBindStatusCallbackEx> extended;
    HRESULT result = caller_.As(&extended);
    if (SUCCEEDED(result)) {
        result = extended->GetBindInfoEx(flags, info, flags2, reserved);
    }
    if (SUCCEEDED(result)) {
        bindFlags2_ = *flags2;
        result = bindInfo_.Keep(*flags, *info);
    }
    return result;
}

HRESULT NegotiatingCallback::OnStartBinding(DWORD reserved, IBinding* binding) {
    if (!bindInfo_.Synchronous()) {
        return caller_->OnStartBinding(reserved, binding);
    }
    if (proxy_ != nullptr) {
        proxy_->Follow(binding);
        return S_OK;
    }
    proxy_.Swap(TakeOver(new (std::nothrow) BindingProxy));
    if (proxy_ == nullptr) {
        return E_OUTOFMEMORY;
    }
    proxy_->Follow(binding);
    return caller_->OnStartBinding(reserved, proxy_.Get());
}

HRESULT NegotiatingCallback::GetPriority(LONG* priority) {
    return caller_->GetPriority(priority);
}

HRESULT NegotiatingCallback::OnLowResource(DWORD reserved) {
    return caller_->OnLowResource(reserved);
}

HRESULT NegotiatingCallback::OnProgress(ULONG progress, ULONG progressMax, ULONG code, LPCWSTR text) try {
    if (state_ != State::Delivering) {
        return S_OK;
    }
    if (code == BINDSTATUS_REDIRECTING && text != nullptr) {
        location_ = text;
    }
    return caller_->OnProgress(progress, progressMax, code, text);
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

HRESULT NegotiatingCallback::BeginningTransaction(LPCWSTR url, LPCWSTR headers, DWORD reserved,
                                                  LPWSTR* additionalHeaders) try {
    if (begun_) {
        return RepeatHeaders(additionalHeaders);
    }
    begun_ = true;
    *additionalHeaders = nullptr;
    negotiate_ = FindService<IHttpNegotiate>();
    if (negotiate_ == nullptr) {
        return S_OK;
    }
    const HRESULT result = negotiate_->BeginningTransaction(url, headers, reserved, additionalHeaders);
    if (SUCCEEDED(result) && *additionalHeaders != nullptr) {
        additionalHeaders_ = *additionalHeaders;
    }
    return result;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

/// WinINet of Wine reads only the first challenge of a line. Where Basic is a later one, the answer goes along unasked.
HRESULT NegotiatingCallback::RepeatHeaders(LPWSTR* additionalHeaders) const {
    const SecretText authorization =
        challenge_ == BasicChallenge::Listed ? BasicAuthorizationLine(credentials_) : SecretText();
    const std::size_t length = additionalHeaders_.size() + authorization.View().size();
    *additionalHeaders = static_cast<LPWSTR>(CoTaskMemAlloc((length + 1) * sizeof(wchar_t)));
    if (*additionalHeaders == nullptr) {
        return E_OUTOFMEMORY;
    }
    Append(Append(*additionalHeaders, additionalHeaders_), authorization.View());
    return S_OK;
}

HRESULT NegotiatingCallback::OnResponse(DWORD code, LPCWSTR responseHeaders, LPCWSTR requestHeaders,
                                        LPWSTR* additionalHeaders) {
    if (MayAsk(code, responseHeaders)) {
        if (const auto authenticate = FindService<IAuthenticate>()) {
            const HRESULT result = Ask(*authenticate.Get());
            if (result != S_OK) {
                return result;
            }
        }
    }
    if (negotiate_ == nullptr) {
        return S_OK;
    }
    const HRESULT result = negotiate_->OnResponse(code, responseHeaders, requestHeaders, additionalHeaders);
    return bindInfo_.Synchronous() && FAILED(result) ? EndAttempt(State::Failed, result) : result;
}

bool NegotiatingCallback::MayAsk(DWORD code, LPCWSTR responseHeaders) {
    credentials_.Forget(); // whatever was sent has had its answer
    if (!bindInfo_.Synchronous() || code != HTTP_STATUS_DENIED || questions_ == kMostQuestions) {
        return false;
    }
    challenge_ = FindBasicChallenge(responseHeaders == nullptr ? L"" : responseHeaders);
    return challenge_ != BasicChallenge::None;
}

/// @return `S_OK` if the answer at hand is the final one, else what urlmon is to be told.
HRESULT NegotiatingCallback::Ask(IAuthenticate& authenticate) {
    ++questions_;
    HWND window = nullptr;
    const HRESULT result =
        authenticate.Authenticate(&window, credentials_.userName.Receive(), credentials_.password.Receive());
    if (proxy_->Aborted()) {
        return E_ABORT; // the attempt has ended already, as the caller wished
    }
    if (FAILED(result)) {
        return EndAttempt(State::Failed, result);
    }
    return credentials_.Given() ? EndAttempt(State::Repeating, S_OK) : S_OK;
}

/// @return what urlmon is to be told: it then looks no further into the answer.
HRESULT NegotiatingCallback::EndAttempt(State state, HRESULT failure) {
    state_ = state;
    failure_ = failure;
    proxy_->ReportFailure(failure);
    proxy_->AbortAttempt();
    return E_ABORT;
}

HRESULT NegotiatingCallback::OnDataAvailable(DWORD flags, DWORD size, FORMATETC* format, STGMEDIUM* medium) {
    if (state_ != State::Delivering) {
        return E_ABORT;
    }
    const HRESULT result = caller_->OnDataAvailable(flags, size, format, medium);
    // To Windows these only say how the caller's reads have ended; Wine would stop here.
    const bool goesOn = SUCCEEDED(result) || result == E_PENDING;
    return bindInfo_.Synchronous() && goesOn ? S_OK : result;
}

HRESULT NegotiatingCallback::OnObjectAvailable(REFIID iid, IUnknown* object) {
    return caller_->OnObjectAvailable(iid, object);
}

HRESULT NegotiatingCallback::OnStopBinding(HRESULT result, LPCWSTR error) {
    switch (state_) {
    case State::Delivering:
        stopped_ = true;
        return caller_->OnStopBinding(result, error);
    case State::Failed:
        stopped_ = true;
        return caller_->OnStopBinding(failure_, nullptr);
    case State::Repeating:
        break;
    }
    return S_OK;
}

HRESULT NegotiatingCallback::EndBind(HRESULT result) {
    const HRESULT outcome = state_ == State::Failed ? failure_ : result;
    if (proxy_ != nullptr && !stopped_) {
        caller_->OnStopBinding(outcome, nullptr);
    }
    return outcome;
}

} // namespace windows_gaps
