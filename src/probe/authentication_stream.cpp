// The life of one bind: opening it, its reference count, its start and stop, and the body that is read and dropped.
#include "probe/authentication_stream.h"

#include <utility>

#include <wininet.h>

#include "du/string_utilities.h"
#include "probe/bind_error_names.h"
#include "probe/header_trace.h"
#include "support/com_boundary.h"
#include "support/failed_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

constexpr size_t kReadBufferSize = 65536;

/// Traces which step of opening the bind failed.
bool TraceOpenFailure(const char* call) {
    kBasicAuthenticationTrace.Failure()
        << "Error while creating HTTP Stream for server authentication - " << call << "() failed";
    return false;
}

} // namespace

AuthenticationStream::AuthenticationStream(ServerAuthenticationCallback& callback, std::wstring promptText,
                                           std::wstring captionText, std::string serverUrl)
    : promptText_(std::move(promptText)),
      captionText_(std::move(captionText)),
      callback_(callback),
      serverUrl_(std::move(serverUrl)),
      buffer_(kReadBufferSize) {}

AuthenticationStream::~AuthenticationStream() {
    beingDestroyed_ = true; // what is released here may give back its reference to this object
    ReleaseBinding();
}

bool AuthenticationStream::Open(const std::string& address, const std::wstring& additionalHeaders) {
    address_ = address;
    additionalHeaders_ = additionalHeaders;
    const std::wstring wideAddress = du::Utf8ToWideStr(address_);

    if (FAILED(CreateURLMoniker(nullptr, wideAddress.c_str(), &moniker_))) {
        return TraceOpenFailure("CreateURLMoniker");
    }
    if (FAILED(CreateBindCtx(0, &bindContext_))) {
        return TraceOpenFailure("CreateBindCtx");
    }
    if (FAILED(RegisterBindStatusCallback(bindContext_.Get(), this, nullptr, 0))) {
        return TraceOpenFailure("RegisterBindStatusCallback");
    }

    AddRef(); // for the binding: OnStopBinding gives it back
    // OnStopBinding lets go of both, and the call is still running then.
    const ComPtr<IMoniker> moniker = moniker_;
    const ComPtr<IBindCtx> bindContext = bindContext_;
    ComPtr<IStream> stream;
    const HRESULT result = moniker->BindToStorage(bindContext.Get(), nullptr, IID_PPV_ARGS(&stream));
    // The stack may keep the context for longer than this object lives: nothing in it may lead here any more.
    RevokeBindStatusCallback(bindContext.Get(), this);
    if (FAILED(result)) {
        return TraceOpenFailure("BindToStorage");
    }
    stream_ = std::move(stream); // may be null: the body has been read already
    kBasicAuthenticationTrace.Info() << "HTTP Stream for server authentication was created successfully";
    return true;
}

void AuthenticationStream::ReleaseBinding() {
    stream_.Reset();
    binding_.Reset();
    bindContext_.Reset();
    moniker_.Reset();
}

HRESULT AuthenticationStream::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (iid == IID_IUnknown || iid == IID_IBindStatusCallback) {
        *object = static_cast<IBindStatusCallback*>(this);
    } else if (iid == IID_IHttpNegotiate) {
        *object = static_cast<IHttpNegotiate*>(this);
    } else if (iid == IID_IHttpSecurity) {
        *object = static_cast<IHttpSecurity*>(this);
    } else if (iid == IID_IAuthenticate) {
        *object = static_cast<IAuthenticate*>(this);
    } else {
        // Deliberate: IWindowForBindingUI too, although IHttpSecurity derives from it.
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG AuthenticationStream::AddRef() {
    return ++referenceCount_;
}

ULONG AuthenticationStream::Release() {
    const ULONG count = --referenceCount_;
    if (count == 0 && !beingDestroyed_) {
        delete this;
    }
    return count;
}

HRESULT AuthenticationStream::OnStartBinding(DWORD /*reserved*/, IBinding* binding) {
    binding_ = binding;
    stopped_ = false;
    return S_OK;
}

HRESULT AuthenticationStream::GetPriority(LONG* /*priority*/) {
    return E_NOTIMPL;
}

HRESULT AuthenticationStream::OnLowResource(DWORD /*reserved*/) {
    return E_NOTIMPL;
}

HRESULT AuthenticationStream::OnProgress(ULONG /*progress*/, ULONG /*progressMax*/, ULONG /*statusCode*/,
                                         LPCWSTR /*statusText*/) {
    return E_NOTIMPL;
}

HRESULT AuthenticationStream::GetBindInfo(DWORD* bindFlags, BINDINFO* bindInfo) {
    // No BINDF_ASYNCHRONOUS: that is what makes the bind synchronous.
    *bindFlags = BINDF_GETNEWESTVERSION | BINDF_NOWRITECACHE | BINDF_PULLDATA;
    bindInfo->dwBindVerb = BINDVERB_GET;
    bindInfo->stgmedData.tymed = TYMED_NULL;
    return S_OK;
}

HRESULT AuthenticationStream::OnDataAvailable(DWORD /*flags*/, DWORD /*size*/, FORMATETC* /*format*/,
                                              STGMEDIUM* medium) {
    if (medium->tymed != TYMED_ISTREAM) {
        return E_ABORT;
    }
    HRESULT result = S_OK;
    ULONG received = 0;
    do {
        received = 0;
        result = medium->pstm->Read(buffer_.data(), static_cast<ULONG>(buffer_.size()), &received);
        bytesReceived_ += received;
        // E_PENDING is a failure code. A stream may also end with a success and nothing read.
    } while (SUCCEEDED(result) && result != S_FALSE && received > 0);
    return result;
}

HRESULT AuthenticationStream::OnObjectAvailable(REFIID /*iid*/, IUnknown* /*object*/) {
    return E_NOTIMPL;
}

HRESULT AuthenticationStream::OnStopBinding(HRESULT result, LPCWSTR /*error*/) {
    if (std::exchange(stopped_, true)) {
        return S_OK; // a binding ends once: what it held has been given back
    }
    // Each step is taken whatever becomes of the one before.
    AtComBoundary(
        [this, result] {
            if (FAILED(result)) {
                ReportFailedBinding(result);
            } else {
                ReportFinishedBinding();
            }
            return S_OK;
        },
        TraceProbeException);
    AtComBoundary(
        [this] {
            callback_.SessionAuthenticationComplete(static_cast<int>(status_));
            return S_OK;
        },
        TraceProbeException);
    ReleaseBinding();
    Release(); // taken in Open; this object may be gone from here on
    return S_OK;
}

void AuthenticationStream::ReportFailedBinding(HRESULT result) {
    if (status_ == AuthenticationStatus::Unauthorized) {
        kBasicAuthenticationTrace.Info() << "Credentials are unauthorized";
        return;
    }
    if (status_ == AuthenticationStatus::Cancelled) {
        NameFailure(E_ABORT);
    } else {
        status_ = AuthenticationStatus::Failed;
        NameFailure(result);
    }
    if (!binding_) {
        return;
    }
    CLSID protocol{};
    DWORD code = 0;
    LPOLESTR text = nullptr;
    if (FAILED(binding_->GetBindResult(&protocol, &code, &text, nullptr))) {
        kBasicAuthenticationTrace.Failure() << "GetBindResult() failed";
    } else {
        // Deliberate: the trace tells where the text is, not the text, and the text stays unfreed.
        kBasicAuthenticationTrace.Info() << "GetBindResult() = " << static_cast<const void*>(text);
    }
}

void AuthenticationStream::NameFailure(HRESULT code) {
    if (const char* const name = FindBindErrorName(code)) {
        kBasicAuthenticationTrace.Failure() << "Server binding failed. error_str = " << name;
    } else if (code == E_ABORT) {
        kBasicAuthenticationTrace.Info() << "Operation aborted.";
    }
}

void AuthenticationStream::ReportFinishedBinding() {
    ComPtr<IWinInetHttpInfo> info;
    if (!binding_ || FAILED(binding_.As(&info))) {
        return;
    }
    DWORD httpStatus = 0;
    DWORD size = sizeof(httpStatus);
    if (FAILED(info->QueryInfo(HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &httpStatus, &size, nullptr,
                               nullptr))) {
        kBasicAuthenticationTrace.Failure() << "Server binding failed. HTTP status = " << httpStatus;
    }
    TraceHttpHeaders(*info.Get());
}

} // namespace kelda
