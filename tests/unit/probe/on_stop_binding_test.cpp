// The end of a bind: what is traced and reported for each way it can end, and in which order all is released.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <windows.h>

#include <wincred.h>
#include <wrl/client.h>

#include "dp/environment.h"
#include "probe_test.h"
#include "tests/support/fake_binding.h"
#include "tests/support/replaced_import.h"

using Microsoft::WRL::ComPtr;
using test_support::FakeBinding;
using test_support::Lines;
using test_support::MakeFake;
using test_support::ReplacedImport;

namespace kelda {
namespace {

constexpr const char* kImplementation = "MERIDO_ZANWEBBROWSER_IMPLEMENTATION";

class StoppedBinding : public AuthenticationStreamTest {
  protected:
    /// Lets a binding of the test's own be the stream's; it stays reachable as `binding`.
    void StartBinding() {
        binding = MakeFake<FakeBinding>();
        stream->OnStartBinding(0xFF, binding.Get());
    }

    /// Starts the bind, with a reference taken before as opening does, and ends it.
    Lines Stop(HRESULT result) {
        stream->AddRef();
        stream->OnStartBinding(0xFF, binding.Get());
        EXPECT_EQ(stream->OnStopBinding(result, L""), S_OK);
        EXPECT_EQ(stream->AddRef(), 2U) << "one reference is given back";
        stream->Release();
        return TakeTranscript();
    }

    ComPtr<FakeBinding> binding;
};

class FinishedBinding : public StoppedBinding {
  protected:
    void SetUp() override {
        StartBinding();
        binding->hasHttpInfo = true;
        binding->queryInfo = [](DWORD, void* buffer, DWORD* size) {
            if (buffer != nullptr && *size == sizeof(DWORD)) {
                *static_cast<DWORD*>(buffer) = 200;
            }
            return S_OK;
        };
    }
    ~FinishedBinding() override { dp::Environment::Put(kImplementation, ""); }

    /// Answers queries as WinINet does, with the same headers each time.
    static HRESULT AnswerWithHeaders(DWORD option, void* buffer, DWORD* size) {
        const std::string headers =
            option == 0x80000016U ? "GET / HTTP/1.1\r\nHost: server\r\nauthorization: Basic YTpi\r\n\r\n"
                                  : "HTTP/1.1 200 OK\r\nServer: s\r\n\r\n";
        if (buffer == nullptr) {
            *size = static_cast<DWORD>(headers.size() + 1);
            return S_FALSE;
        }
        if (option != 0x20000013U) {
            std::memcpy(buffer, headers.c_str(), headers.size() + 1);
        }
        return S_OK;
    }

    static Lines TraceLinesOf(Lines lines) {
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with('['); });
        return lines;
    }
};

TEST_F(StoppedBinding, ANamedFailureIsTracedByItsName) {
    StartBinding();
    EXPECT_EQ(Stop(INET_E_CANNOT_CONNECT),
              (Lines{"[3] Server binding failed. error_str = INET_E_CANNOT_CONNECT", "GetBindResult",
                     "[0] GetBindResult() = 0x0", "SessionAuthenticationComplete 3"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::Failed);
}

TEST_F(StoppedBinding, AnUnnamedFailureIsNotNamed) {
    StartBinding();
    EXPECT_EQ(Stop(static_cast<HRESULT>(0x80072EE7UL)),
              (Lines{"GetBindResult", "[0] GetBindResult() = 0x0", "SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, AnAbortedBindFailsAsAnAbortedOperation) {
    StartBinding();
    EXPECT_EQ(Stop(E_ABORT), (Lines{"[0] Operation aborted.", "GetBindResult", "[0] GetBindResult() = 0x0",
                                    "SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, ShadowedCodesGetTheFirstName) {
    EXPECT_EQ(Stop(INET_E_REDIRECTING),
              (Lines{"[3] Server binding failed. error_str = INET_E_REDIRECT_FAILED",
                     "SessionAuthenticationComplete 3"}));
    EXPECT_EQ(Stop(INET_E_USE_DEFAULT_PROTOCOLHANDLER),
              (Lines{"[3] Server binding failed. error_str = INET_E_DEFAULT_ACTION",
                     "SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, AForbiddenAnswerIsNamedOnlyIfTheBindsCodeIsInTheTable) {
    stream->OnResponse(403, L"", nullptr, nullptr);
    EXPECT_EQ(Stop(INET_E_OBJECT_NOT_FOUND),
              (Lines{"[3] Server binding failed. error_str = INET_E_OBJECT_NOT_FOUND",
                     "SessionAuthenticationComplete 3"}));
    EXPECT_EQ(Stop(E_FAIL), (Lines{"SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, AnUnauthorizedEndSaysOnlyThat) {
    StartBinding();
    stream->OnResponse(401, L"", nullptr, nullptr);
    EXPECT_EQ(Stop(INET_E_AUTHENTICATION_REQUIRED),
              (Lines{"[0] Credentials are unauthorized", "SessionAuthenticationComplete 5"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::Unauthorized);
}

TEST_F(StoppedBinding, AFailureAfterALoginFormAnswerIsAFailure) {
    stream->OnResponse(200, L"", nullptr, nullptr);
    EXPECT_EQ(Stop(INET_E_CONNECTION_TIMEOUT),
              (Lines{"[3] Server binding failed. error_str = INET_E_CONNECTION_TIMEOUT",
                     "SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, AResultTextIsTracedByItsAddressAndLeftUnfreed) {
    StartBinding();
    std::wstring text = L"why";
    binding->bindResultText = text.data();
    bool freed = false;
    const ReplacedImport<struct FreeTask, decltype(CoTaskMemFree)> freeTaskMemory(
        "ole32.dll", "CoTaskMemFree", [&](void* memory) { freed = freed || memory == text.data(); });
    std::array<char, 32> address{};
    std::snprintf(address.data(), address.size(), "0x%llx",
                  reinterpret_cast<unsigned long long>(text.data()));
    EXPECT_EQ(Stop(E_FAIL), (Lines{"GetBindResult", std::string("[0] GetBindResult() = ") + address.data(),
                                   "SessionAuthenticationComplete 3"}));
    EXPECT_FALSE(freed);
}

TEST_F(StoppedBinding, ACancelledPromptIsAnAbortedOperationWhateverTheBindsCode) {
    const ReplacedImport<struct Prompt, decltype(CredUIPromptForWindowsCredentialsW)> prompt(
        "credui.dll", "CredUIPromptForWindowsCredentialsW",
        [](PCREDUI_INFOW, DWORD, ULONG*, LPCVOID, ULONG, LPVOID*, ULONG*, BOOL*, DWORD) -> DWORD {
            return ERROR_CANCELLED;
        });
    HWND window = nullptr;
    LPWSTR none = nullptr;
    EXPECT_EQ(stream->Authenticate(&window, &none, &none), E_INVALIDARG);
    TakeTranscript();
    EXPECT_EQ(Stop(INET_E_DOWNLOAD_FAILURE),
              (Lines{"[0] Operation aborted.", "SessionAuthenticationComplete 4"}));
}

TEST_F(StoppedBinding, ABindResultThatFailsIsTraced) {
    StartBinding();
    binding->bindResult = E_UNEXPECTED;
    EXPECT_EQ(Stop(E_FAIL),
              (Lines{"GetBindResult", "[3] GetBindResult() failed", "SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, WithoutABindingThereIsNothingToAsk) {
    EXPECT_EQ(Stop(S_OK), (Lines{"SessionAuthenticationComplete 0"}));
    EXPECT_EQ(Stop(E_FAIL), (Lines{"SessionAuthenticationComplete 3"}));
}

TEST_F(StoppedBinding, TheBindingIsReleasedBeforeTheCallReturns) {
    StartBinding();
    Stop(S_OK);
    EXPECT_EQ(binding->Count(), 1U);
}

TEST_F(StoppedBinding, TheLastReferenceMayGoInsideTheCall) {
    StartBinding();
    AuthenticationStream* const counted = stream.release();
    EXPECT_EQ(counted->OnStopBinding(S_OK, nullptr), S_OK);
    EXPECT_EQ(binding->Count(), 1U);
}

TEST_F(StoppedBinding, TheCallbackIsToldWhereTheTraceBreaksDown) {
    StartBinding();
    binding->hasHttpInfo = true;
    binding->queryInfo = [](DWORD, void*, DWORD*) -> HRESULT { throw std::bad_alloc(); };
    EXPECT_EQ(Stop(S_OK), (Lines{"query IWinInetHttpInfo", "QueryInfo 0x20000013 into 4 bytes",
                                 "[0] Failed: std::bad_alloc error code: -2147024882",
                                 "SessionAuthenticationComplete 0"}));
}

TEST_F(StoppedBinding, NoExceptionCrossesIntoTheStackAndAllIsReleased) {
    ThrowingCallback broken{std::runtime_error("broken")};
    AuthenticationStream other(broken, L"", L"", "");
    binding = MakeFake<FakeBinding>();
    other.OnStartBinding(0xFF, binding.Get());
    other.AddRef();
    EXPECT_EQ(other.OnStopBinding(S_OK, L""), S_OK);
    EXPECT_EQ(binding->Count(), 1U);
    EXPECT_EQ(other.AddRef(), 2U);
}

TEST_F(StoppedBinding, ThatStopsTwiceIsReportedAndReleasedOnce) {
    StartBinding();
    Stop(E_FAIL);
    EXPECT_EQ(stream->OnStopBinding(E_FAIL, L""), S_OK);
    EXPECT_EQ(TakeTranscript(), Lines{});
    EXPECT_EQ(stream->AddRef(), 2U);
    stream->Release();
}

TEST_F(FinishedBinding, ABindingWithoutHttpSideIsReportedAsItIs) {
    binding->hasHttpInfo = false;
    EXPECT_EQ(Stop(S_OK), (Lines{"SessionAuthenticationComplete 0"}));
}

TEST_F(FinishedBinding, TheStatusCodeIsAskedForAsANumberAndNotTraced) {
    stream->OnResponse(200, L"", nullptr, nullptr);
    EXPECT_EQ(Stop(S_OK), (Lines{"query IWinInetHttpInfo", "QueryInfo 0x20000013 into 4 bytes",
                                 "SessionAuthenticationComplete 1"}));
    EXPECT_EQ(binding->Count(), 1U) << "the HTTP side is released too";
}

TEST_F(FinishedBinding, AnySuccessCodeIsASuccess) {
    stream->OnResponse(200, L"", nullptr, nullptr);
    EXPECT_EQ(Stop(S_FALSE).back(), "SessionAuthenticationComplete 1");
}

TEST_F(FinishedBinding, AFailedStatusQueryIsTracedWithTheValueAndChangesNothing) {
    stream->OnResponse(200, L"", nullptr, nullptr);
    binding->queryInfo = [](DWORD, void* buffer, DWORD*) {
        *static_cast<DWORD*>(buffer) = 4000000000U;
        return E_FAIL;
    };
    EXPECT_EQ(Stop(S_OK), (Lines{"query IWinInetHttpInfo", "QueryInfo 0x20000013 into 4 bytes",
                                 "[3] Server binding failed. HTTP status = 4000000000",
                                 "SessionAuthenticationComplete 1"}));
}

TEST_F(FinishedBinding, HeadersAreTracedLineByLineWhenAskedForButNoCredentials) {
    dp::Environment::Put(kImplementation, "x-trace-y");
    binding->queryInfo = AnswerWithHeaders;
    EXPECT_EQ(Stop(S_OK), (Lines{"query IWinInetHttpInfo", "QueryInfo 0x20000013 into 4 bytes",
                                 "QueryInfo 0x80000016 for the size", "QueryInfo 0x80000016 into 60 bytes",
                                 "[0] Request headers:", "[0] GET / HTTP/1.1", "[0] Host: server",
                                 "[0] authorization: (not traced)", "QueryInfo 0x00000016 for the size",
                                 "QueryInfo 0x00000016 into 31 bytes", "[0] Response headers:",
                                 "[0] HTTP/1.1 200 OK", "[0] Server: s", "SessionAuthenticationComplete 0"}));
}

TEST_F(FinishedBinding, HeadersAreTracedAfterAFailedStatusQueryToo) {
    dp::Environment::Put(kImplementation, "trace");
    binding->queryInfo = [](DWORD option, void* buffer, DWORD* size) {
        return option == 0x20000013U ? E_FAIL : AnswerWithHeaders(option, buffer, size);
    };
    const Lines lines = Stop(S_OK);
    EXPECT_EQ(lines.at(2), "[3] Server binding failed. HTTP status = 0");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "[0] Server: s"), lines.end());
}

TEST_F(FinishedBinding, HeadersWhoseSizeIsKnownButNotTheirTextShowOnlyTheHeading) {
    dp::Environment::Put(kImplementation, "trace");
    binding->queryInfo = [](DWORD, void* buffer, DWORD* size) {
        *size = 4;
        return buffer == nullptr ? S_OK : E_FAIL;
    };
    EXPECT_EQ(TraceLinesOf(Stop(S_OK)), (Lines{"[3] Server binding failed. HTTP status = 0",
                                               "[0] Request headers:", "[0] Response headers:"}));
}

TEST_F(FinishedBinding, HeadersOfOddSizesAreReadWithoutHarm) {
    dp::Environment::Put(kImplementation, "trace");
    binding->queryInfo = [](DWORD option, void* buffer, DWORD* size) {
        if (buffer == nullptr) {
            *size = option == 0x80000016U ? 0U : 4U;
        } else if (option == 0x00000016U) {
            std::memcpy(buffer, "abcd", 4); // not terminated
        }
        return S_OK;
    };
    EXPECT_EQ(TraceLinesOf(Stop(S_OK)), (Lines{"[0] Request headers:", "[0] Response headers:", "[0] abcd"}));
}

TEST_F(FinishedBinding, HeadersThatCannotBeRetrievedAreSaidSoForEachDirection) {
    dp::Environment::Put(kImplementation, "trace");
    binding->queryInfo = [](DWORD option, void*, DWORD*) { return option == 0x20000013U ? S_OK : E_FAIL; };
    EXPECT_EQ(Stop(S_OK), (Lines{"query IWinInetHttpInfo", "QueryInfo 0x20000013 into 4 bytes",
                                 "QueryInfo 0x80000016 for the size", "[0] Unable to retrieve headers",
                                 "QueryInfo 0x00000016 for the size", "[0] Unable to retrieve headers",
                                 "SessionAuthenticationComplete 0"}));
}

TEST_F(FinishedBinding, OnlyTheWordInLowerCaseTurnsHeadersOn) {
    for (const char* const value : {"", "Trace", "TRACE", "trac", "t r a c e", "ie,parse"}) {
        dp::Environment::Put(kImplementation, value);
        stream->OnStartBinding(0xFF, binding.Get());
        EXPECT_EQ(Stop(S_OK).size(), 3U) << value;
    }
}

} // namespace
} // namespace kelda
