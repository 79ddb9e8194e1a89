// A caller of a URL-moniker bind that writes down every call it gets, and the bind of such a caller.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include <urlmon.h>
#include <wrl/client.h>

#include "tests/support/fake_object.h"
#include "tests/support/transcript.h"

namespace windows_gaps_test {

using test_support::Lines;

/// What a caller answers to one question for credentials.
struct Offer {
    HRESULT result = S_OK;
    std::optional<std::wstring> userName;
    std::optional<std::wstring> password;
};

/// Offers credentials by `QueryInterface`, by `IServiceProvider`, or not at all.
enum class Offering { ByInterface, ByService, Never };

class RecordingCaller final : public test_support::FakeObject<IBindStatusCallbackEx, IHttpNegotiate,
                                                              IAuthenticate, IServiceProvider> {
  public:
    RecordingCaller() : FakeObject("caller") {}

    Offering offering = Offering::ByInterface;
    bool extended = false; ///< whether it answers for `IBindStatusCallbackEx`
    DWORD bindFlags = BINDF_GETNEWESTVERSION | BINDF_NOWRITECACHE | BINDF_PULLDATA;
    std::string posted; ///< the data of a POST; empty: a GET
    std::wstring additionalHeaders;
    std::deque<Offer> offers; ///< one a question; a question beyond them fails with E_UNEXPECTED
    bool recordsProgress = false;
    /// What `OnDataAvailable` returns once the reads have ended with their own result.
    std::function<HRESULT(HRESULT endOfReads)> dataResult = [](HRESULT end) { return end; };

    // Results of the calls of that name.
    HRESULT bindInfoResult = S_OK;
    HRESULT startResult = S_OK;

    // Called, where set, in the midst of the call of that name.
    std::function<void(IBinding* binding)> onStart;
    std::function<void(ULONG code)> onProgress;
    std::function<void(LPWSTR userName, LPWSTR password)> onAuthenticate;
    std::function<HRESULT(DWORD code)> onResponse;
    std::function<void()> onData;
    std::function<void()> onStop;

    std::string body;
    Microsoft::WRL::ComPtr<IBinding> binding; ///< released when the bind stops
    Lines services;                           ///< those that were asked for by `QueryService`
    bool stopped = false;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD reserved, IBinding* started) override;
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* /*priority*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnLowResource(DWORD /*reserved*/) override { return E_NOTIMPL; }
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
                                                   LPWSTR* additional) override;
    HRESULT STDMETHODCALLTYPE OnResponse(DWORD code, LPCWSTR responseHeaders, LPCWSTR requestHeaders,
                                         LPWSTR* additional) override;

    HRESULT STDMETHODCALLTYPE Authenticate(HWND* window, LPWSTR* userName, LPWSTR* password) override;

    HRESULT STDMETHODCALLTYPE QueryService(REFGUID service, REFIID iid, void** object) override;

  private:
    HRESULT FillBindInfo(DWORD* flags, BINDINFO* info) const;
};

/// A copy by `CoTaskMemAlloc`, the receiver's to free.
LPWSTR TaskCopy(const std::wstring& text);

/// Which `CreateURLMoniker` makes the moniker: the one that this program imports, or urlmon's whatever is imported.
enum class MonikerOf { Import, Urlmon };

Microsoft::WRL::ComPtr<IMoniker> MakeMoniker(const std::wstring& url, MonikerOf whose = MonikerOf::Import);

/// Binds to a stream and records "BindToStorage RESULT" with or without " and a stream". No caller: none is registered.
HRESULT Bind(const std::wstring& url, RecordingCaller* caller, MonikerOf whose = MonikerOf::Import);

/// Runs this thread's message loop until the condition holds; gives up after ten seconds.
bool PumpUntil(const std::function<bool()>& condition);

/// A test with COM on its thread and this program supplied; fails if a bind has left anything alive.
class BindTest : public test_support::TranscriptTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// One reference is this object's, so its count tells who else holds one.
    Microsoft::WRL::ComPtr<RecordingCaller> caller_;
};

} // namespace windows_gaps_test
