// The COM object that the URL-moniker stack calls back during a probe: it watches how the server answers, supplies
// credentials when it is challenged, and discards the body.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

#include <urlmon.h>
#include <wrl/client.h>

#include "kelda/kelda.h"
#include "probe/server_authentication_callback.h"
#include "support/com_text.h"

namespace kelda {

/// One bind of one address. Lives on the probing thread only, so that its count is a plain integer. Whoever created it
/// may destroy it directly, whatever its count is then: references that come back meanwhile are harmless.
class AuthenticationStream final : public IBindStatusCallback,
                                   public IHttpNegotiate,
                                   public IHttpSecurity,
                                   public IAuthenticate {
  public:
    /// @param callback  Not owned; must outlive the stream.
    AuthenticationStream(ServerAuthenticationCallback& callback, std::wstring promptText,
                         std::wstring captionText, std::string serverUrl);
    virtual ~AuthenticationStream();
    AuthenticationStream(const AuthenticationStream&) = delete;
    AuthenticationStream& operator=(const AuthenticationStream&) = delete;

    /// Binds synchronously to `address` (UTF-8). All callbacks come before it returns.
    /// @param additionalHeaders  Complete header lines to send along, or empty.
    /// @return false, traced, where the bind failed.
    bool Open(const std::string& address, const std::wstring& additionalHeaders);

    AuthenticationStatus Status() const { return status_; }
    ServerAuthenticationCallback& Callback() const { return callback_; }
    const std::string& ServerUrl() const { return serverUrl_; }

    /// The "save" box of the credential prompt: what it shows at first, and what the user left it at.
    BOOL& SaveCredentials() { return saveCredentials_; }

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    // IBindStatusCallback
    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD reserved, IBinding* binding) override;
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* priority) override;
    HRESULT STDMETHODCALLTYPE OnLowResource(DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE OnProgress(ULONG progress, ULONG progressMax, ULONG statusCode,
                                         LPCWSTR statusText) override;
    HRESULT STDMETHODCALLTYPE OnStopBinding(HRESULT result, LPCWSTR error) override;
    HRESULT STDMETHODCALLTYPE GetBindInfo(DWORD* bindFlags, BINDINFO* bindInfo) override;
    HRESULT STDMETHODCALLTYPE OnDataAvailable(DWORD flags, DWORD size, FORMATETC* format,
                                              STGMEDIUM* medium) override;
    HRESULT STDMETHODCALLTYPE OnObjectAvailable(REFIID iid, IUnknown* object) override;

    // IHttpNegotiate
    HRESULT STDMETHODCALLTYPE BeginningTransaction(LPCWSTR url, LPCWSTR headers, DWORD reserved,
                                                   LPWSTR* additionalHeaders) override;
    HRESULT STDMETHODCALLTYPE OnResponse(DWORD responseCode, LPCWSTR responseHeaders, LPCWSTR requestHeaders,
                                         LPWSTR* additionalRequestHeaders) override;

    // IHttpSecurity
    HRESULT STDMETHODCALLTYPE GetWindow(REFGUID reason, HWND* window) override;
    HRESULT STDMETHODCALLTYPE OnSecurityProblem(DWORD problem) override;

    // IAuthenticate
    HRESULT STDMETHODCALLTYPE Authenticate(HWND* window, LPWSTR* userName, LPWSTR* password) override;

  private:
    void ReportFailedBinding(HRESULT result);
    void NameFailure(HRESULT code);
    void ReportFinishedBinding();
    void ReleaseBinding();
    DWORD AskUser(ComText& userName, ComText& password);

    std::wstring promptText_;
    std::wstring captionText_;
    ServerAuthenticationCallback& callback_;
    std::wstring additionalHeaders_;
    std::int32_t httpStatus_ = -1;
    bool beingDestroyed_ = false;
    bool stopped_ = false;
    std::uint32_t bytesReceived_ = 0;
    std::string address_;
    std::string serverUrl_;
    BOOL saveCredentials_ = FALSE;
    ULONG referenceCount_ = 1;
    Microsoft::WRL::ComPtr<IMoniker> moniker_;
    Microsoft::WRL::ComPtr<IBindCtx> bindContext_;
    Microsoft::WRL::ComPtr<IStream> stream_;
    Microsoft::WRL::ComPtr<IBinding> binding_;
    std::vector<char> buffer_;
    AuthenticationStatus status_ = AuthenticationStatus::None;
};

} // namespace kelda
