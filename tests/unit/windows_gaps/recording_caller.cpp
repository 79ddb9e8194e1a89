// The calls as they come, in words.
#include "recording_caller.h"

#include <array>
#include <cstring>
#include <cwchar>

#include "testbed/windows_gaps/windows_gaps.h"

using Microsoft::WRL::ComPtr;
using test_support::Hexadecimal;
using test_support::Record;

namespace windows_gaps_test {
namespace {

std::string Number(unsigned long value) {
    return std::to_string(value);
}

std::string Code(HRESULT result) {
    return result == S_OK      ? "S_OK"
           : result == S_FALSE ? "S_FALSE"
                               : Hexadecimal(static_cast<unsigned long>(result));
}

} // namespace

HRESULT RecordingCaller::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    if (iid == IID_IHttpNegotiate) {
        *object = static_cast<IHttpNegotiate*>(this);
    } else if (iid == IID_IAuthenticate && offering == Offering::ByInterface) {
        *object = static_cast<IAuthenticate*>(this);
    } else if (iid == IID_IServiceProvider && offering == Offering::ByService) {
        *object = static_cast<IServiceProvider*>(this);
    } else if (iid == IID_IBindStatusCallback) {
        *object = static_cast<IBindStatusCallback*>(this);
    } else if (iid == IID_IBindStatusCallbackEx && !extended) {
        return E_NOINTERFACE;
    } else {
        return FakeObject::QueryInterface(iid, object);
    }
    AddRef();
    return S_OK;
}

HRESULT RecordingCaller::QueryService(REFGUID service, REFIID iid, void** object) {
    *object = nullptr;
    std::array<wchar_t, 40> name{};
    StringFromGUID2(service, name.data(), static_cast<int>(name.size()));
    services.emplace_back(name.begin(), name.begin() + 38);
    if (service != IID_IAuthenticate || iid != IID_IAuthenticate) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IAuthenticate*>(this);
    AddRef();
    return S_OK;
}

HRESULT RecordingCaller::OnStartBinding(DWORD reserved, IBinding* started) {
    Record("OnStartBinding " + Hexadecimal(reserved));
    binding = started;
    if (onStart) {
        onStart(started);
    }
    return startResult;
}

HRESULT RecordingCaller::OnProgress(ULONG /*progress*/, ULONG /*progressMax*/, ULONG code, LPCWSTR /*text*/) {
    if (recordsProgress) {
        Record("OnProgress " + Number(code));
    }
    if (onProgress) {
        onProgress(code);
    }
    return S_OK;
}

HRESULT RecordingCaller::OnStopBinding(HRESULT result, LPCWSTR error) {
    std::string entry = "OnStopBinding " + Code(result) + (error == nullptr ? "" : " with text");
    CLSID protocol{};
    DWORD bindResult = 0;
    LPOLESTR text = nullptr;
    if (binding != nullptr && SUCCEEDED(binding->GetBindResult(&protocol, &bindResult, &text, nullptr)) &&
        static_cast<HRESULT>(bindResult) != result) {
        entry += ", but bind result " + Hexadecimal(bindResult);
    }
    Record(entry);
    if (onStop) {
        onStop();
    }
    binding.Reset();
    stopped = true;
    return S_OK;
}

HRESULT RecordingCaller::GetBindInfo(DWORD* flags, BINDINFO* info) {
    Record("GetBindInfo");
    return FillBindInfo(flags, info);
}

HRESULT RecordingCaller::GetBindInfoEx(DWORD* flags, BINDINFO* info, DWORD* flags2, DWORD* /*reserved*/) {
    Record("GetBindInfoEx");
    *flags2 = 0;
    return FillBindInfo(flags, info);
}

HRESULT RecordingCaller::FillBindInfo(DWORD* flags, BINDINFO* info) const {
    *flags = bindFlags;
    info->dwBindVerb = BINDVERB_GET;
    info->stgmedData.tymed = TYMED_NULL;
    if (!posted.empty()) {
        info->dwBindVerb = BINDVERB_POST;
        info->stgmedData.tymed = TYMED_HGLOBAL;
        info->stgmedData.hGlobal = GlobalAlloc(GMEM_FIXED, posted.size()); // urlmon's to free
        std::memcpy(info->stgmedData.hGlobal, posted.data(), posted.size());
        info->cbstgmedData = static_cast<DWORD>(posted.size());
    }
    return bindInfoResult;
}

HRESULT RecordingCaller::OnDataAvailable(DWORD /*flags*/, DWORD /*size*/, FORMATETC* /*format*/,
                                         STGMEDIUM* medium) {
    if (onData) {
        onData();
    }
    std::array<char, 4096> buffer{};
    HRESULT result = S_OK;
    for (ULONG count = 0; result == S_OK; count = 0) {
        result = medium->pstm->Read(buffer.data(), static_cast<ULONG>(buffer.size()), &count);
        body.append(buffer.data(), count);
    }
    Record("OnDataAvailable, read " + Number(static_cast<unsigned long>(body.size())) + " so far");
    return dataResult(result);
}

HRESULT RecordingCaller::OnObjectAvailable(REFIID /*iid*/, IUnknown* /*object*/) {
    Record("OnObjectAvailable");
    return S_OK;
}

HRESULT RecordingCaller::BeginningTransaction(LPCWSTR /*url*/, LPCWSTR /*headers*/, DWORD /*reserved*/,
                                              LPWSTR* additional) {
    Record("BeginningTransaction");
    *additional = additionalHeaders.empty() ? nullptr : TaskCopy(additionalHeaders);
    return S_OK;
}

HRESULT RecordingCaller::OnResponse(DWORD code, LPCWSTR /*responseHeaders*/, LPCWSTR /*requestHeaders*/,
                                    LPWSTR* /*additional*/) {
    Record("OnResponse " + Number(code));
    return onResponse ? onResponse(code) : S_OK;
}

HRESULT RecordingCaller::Authenticate(HWND* window, LPWSTR* userName, LPWSTR* password) {
    Record("Authenticate");
    if (offers.empty()) {
        return E_UNEXPECTED;
    }
    const Offer offer = offers.front();
    offers.pop_front();
    *window = GetDesktopWindow();
    if (offer.userName) {
        *userName = TaskCopy(*offer.userName);
    }
    if (offer.password) {
        *password = TaskCopy(*offer.password);
    }
    if (onAuthenticate) {
        onAuthenticate(*userName, *password);
    }
    return offer.result;
}

LPWSTR TaskCopy(const std::wstring& text) {
    auto* copy = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
    std::wmemcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

ComPtr<IMoniker> MakeMoniker(const std::wstring& url, MonikerOf whose) {
    auto* create = &CreateURLMoniker;
    if (whose == MonikerOf::Urlmon) {
        create = reinterpret_cast<decltype(create)>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"urlmon.dll"), "CreateURLMoniker")));
    }
    ComPtr<IMoniker> moniker;
    EXPECT_EQ(create(nullptr, url.c_str(), &moniker), S_OK);
    return moniker;
}

HRESULT Bind(const std::wstring& url, RecordingCaller* caller, MonikerOf whose) {
    const ComPtr<IMoniker> moniker = MakeMoniker(url, whose);
    ComPtr<IBindCtx> context;
    EXPECT_EQ(CreateBindCtx(0, &context), S_OK);
    if (caller != nullptr) {
        caller->body.clear();
        EXPECT_EQ(RegisterBindStatusCallback(context.Get(), caller, nullptr, 0), S_OK);
    }
    ComPtr<IStream> stream;
    const HRESULT result = moniker->BindToStorage(context.Get(), nullptr, IID_PPV_ARGS(&stream));
    Record("BindToStorage " + Code(result) + (stream == nullptr ? "" : " and a stream"));
    return result;
}

bool PumpUntil(const std::function<bool()>& condition) {
    const ULONGLONG deadline = GetTickCount64() + 10'000;
    while (!condition()) {
        const ULONGLONG now = GetTickCount64();
        if (now >= deadline) {
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(deadline - now), QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    return true;
}

void BindTest::SetUp() {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    ASSERT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));
    *caller_.GetAddressOf() = new RecordingCaller; // its one reference
}

void BindTest::TearDown() {
    EXPECT_EQ(caller_->Count(), 1U) << "somebody still holds the caller";
    EXPECT_EQ(WindowsGapsLiveObjects(), 0);
    caller_.Reset();
    CoUninitialize();
    TranscriptTest::TearDown();
}

} // namespace windows_gaps_test
