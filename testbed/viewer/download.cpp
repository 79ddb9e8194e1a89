// A synchronous URL-moniker bind whose body goes to a file.
#include "download.h"

#include <array>
#include <cstdio>
#include <memory>

#include <windows.h>

#include <urlmon.h>
#include <wrl/client.h>

#include "du/string_utilities.h"

using Microsoft::WRL::ComPtr;

namespace viewer {
namespace {

constexpr DWORD kHttpOk = 200;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept {
        if (handle != INVALID_HANDLE_VALUE) {
            CloseHandle(handle);
        }
    }
};
using File = std::unique_ptr<HANDLE, HandleCloser>;

/// Writes what arrives, where the server answers 200. Lives on the stack of `Download`, so it is not counted.
class FileReceiver final : public IBindStatusCallback, public IHttpNegotiate {
  public:
    explicit FileReceiver(HANDLE file) : file_(file) {}
    virtual ~FileReceiver() = default;
    FileReceiver(const FileReceiver&) = delete;
    FileReceiver& operator=(const FileReceiver&) = delete;

    DWORD HttpStatus() const { return httpStatus_; }
    DWORD WriteError() const { return writeError_; } // 0 for none
    std::uint64_t Bytes() const { return bytes_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == IID_IBindStatusCallback) {
            *object = static_cast<IBindStatusCallback*>(this);
            return S_OK;
        }
        if (iid == IID_IHttpNegotiate) {
            *object = static_cast<IHttpNegotiate*>(this);
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE OnStartBinding(DWORD /*reserved*/, IBinding* /*binding*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetPriority(LONG* /*priority*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnLowResource(DWORD /*reserved*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnProgress(ULONG /*progress*/, ULONG /*progressMax*/, ULONG /*statusCode*/,
                                         LPCWSTR /*statusText*/) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnStopBinding(HRESULT /*result*/, LPCWSTR /*error*/) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnObjectAvailable(REFIID /*iid*/, IUnknown* /*object*/) override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE GetBindInfo(DWORD* bindFlags, BINDINFO* bindInfo) override {
        *bindFlags = BINDF_GETNEWESTVERSION | BINDF_NOWRITECACHE | BINDF_PULLDATA;
        bindInfo->dwBindVerb = BINDVERB_GET;
        bindInfo->stgmedData.tymed = TYMED_NULL;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE BeginningTransaction(LPCWSTR /*url*/, LPCWSTR /*headers*/, DWORD /*reserved*/,
                                                   LPWSTR* additionalHeaders) override {
        *additionalHeaders = nullptr;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE OnResponse(DWORD responseCode, LPCWSTR /*responseHeaders*/,
                                         LPCWSTR /*requestHeaders*/,
                                         LPWSTR* /*additionalRequestHeaders*/) override {
        httpStatus_ = responseCode;
        return responseCode == kHttpOk ? S_OK : E_ABORT;
    }

    HRESULT STDMETHODCALLTYPE OnDataAvailable(DWORD /*flags*/, DWORD /*size*/, FORMATETC* /*format*/,
                                              STGMEDIUM* medium) override {
        // Checked here as well: not every system ends the bind where OnResponse refuses the answer.
        if (httpStatus_ != kHttpOk || medium->tymed != TYMED_ISTREAM) {
            return E_ABORT;
        }
        ULONG received = 0;
        HRESULT result = S_OK;
        do {
            received = 0;
            result = medium->pstm->Read(buffer_.data(), static_cast<ULONG>(buffer_.size()), &received);
            DWORD written = 0;
            if (!WriteFile(file_, buffer_.data(), received, &written, nullptr)) {
                writeError_ = GetLastError();
                return E_ABORT;
            }
            bytes_ += received;
        } while (result == S_OK && received > 0);
        return FAILED(result) && result != E_PENDING ? result : S_OK;
    }

  private:
    HANDLE file_;
    DWORD httpStatus_ = 0;
    DWORD writeError_ = ERROR_SUCCESS;
    std::uint64_t bytes_ = 0;
    std::array<char, 65536> buffer_{};
};

HRESULT Bind(const std::string& url, FileReceiver& receiver) {
    ComPtr<IMoniker> moniker;
    HRESULT result = CreateURLMoniker(nullptr, du::Utf8ToWideStr(url).c_str(), &moniker);
    ComPtr<IBindCtx> context;
    if (SUCCEEDED(result)) {
        result = CreateBindCtx(0, &context);
    }
    if (SUCCEEDED(result)) {
        result = RegisterBindStatusCallback(context.Get(), &receiver, nullptr, 0);
    }
    ComPtr<IStream> stream;
    return SUCCEEDED(result) ? moniker->BindToStorage(context.Get(), nullptr, IID_PPV_ARGS(&stream)) : result;
}

std::string Hexadecimal(HRESULT result) {
    std::array<char, 16> text{};
    snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(result));
    return text.data();
}

DownloadResult NotWritten(const std::wstring& file, DWORD error) {
    return {DownloadOutcome::NotWritten, 0,
            du::WideStrToUtf8(file) + " cannot be written (error " + std::to_string(error) + ")"};
}

/// Why the document was not served, or nothing where it was.
std::string FindProblem(const FileReceiver& receiver, HRESULT result) {
    if (receiver.HttpStatus() == 0) {
        return "no HTTP answer (" + Hexadecimal(result) + ")";
    }
    if (receiver.HttpStatus() != kHttpOk) {
        return "HTTP " + std::to_string(receiver.HttpStatus());
    }
    return FAILED(result) ? "broken off (" + Hexadecimal(result) + ")" : std::string();
}

} // namespace

DownloadResult Download(const std::string& url, const std::wstring& file) {
    const std::wstring partial = file + L".part";
    File output(CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                            nullptr));
    if (output.get() == INVALID_HANDLE_VALUE) {
        return NotWritten(file, GetLastError());
    }
    FileReceiver receiver(output.get());
    const HRESULT result = Bind(url, receiver);
    output.reset();

    DownloadResult outcome;
    const std::string problem = FindProblem(receiver, result);
    if (receiver.WriteError() != ERROR_SUCCESS) {
        outcome = NotWritten(file, receiver.WriteError());
    } else if (!problem.empty()) {
        outcome = {DownloadOutcome::NotServed, 0, problem};
    } else if (MoveFileExW(partial.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        return {DownloadOutcome::Done, receiver.Bytes(), {}};
    } else {
        outcome = NotWritten(file, GetLastError());
    }
    DeleteFileW(partial.c_str());
    return outcome;
}

} // namespace viewer
