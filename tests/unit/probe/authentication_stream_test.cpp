// The COM face of the probe's stream, each method called directly: identity, start and body of a bind.
#include <array>
#include <cwchar>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include "probe_test.h"
#include "support/com_text.h"
#include "tests/support/fake_binding.h"
#include "tests/support/fake_stream.h"
#include "tests/support/replaced_import.h"
#include "tests/support/scoped_variable.h"

using Microsoft::WRL::ComPtr;
using test_support::FakeBinding;
using test_support::FakeStream;
using test_support::Lines;
using test_support::MakeFake;
using test_support::ReplacedImport;
using test_support::ScopedVariable;

namespace kelda {
namespace {

class StreamIdentity : public AuthenticationStreamTest {};
class StreamBinding : public AuthenticationStreamTest {};
class StreamHttp : public AuthenticationStreamTest {};
class StreamData : public AuthenticationStreamTest {
  protected:
    /// Has the stream read from `source` as urlmon would offer it.
    HRESULT Offer(IStream* source) {
        FORMATETC format{};
        STGMEDIUM medium{};
        medium.tymed = TYMED_ISTREAM;
        medium.pstm = source;
        return stream->OnDataAvailable(BSCF_FIRSTDATANOTIFICATION, 0, &format, &medium);
    }
};

TEST_F(StreamIdentity, IUnknownIsThePrimaryInterface) {
    ComPtr<IUnknown> unknown;
    ComPtr<IBindStatusCallback> primary;
    ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&unknown)), S_OK);
    ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&primary)), S_OK);
    EXPECT_EQ(static_cast<void*>(unknown.Get()), static_cast<void*>(primary.Get()));
}

TEST_F(StreamIdentity, EveryInterfaceLeadsToEveryOtherAndBack) {
    const std::array<const IID*, 4> ids{&IID_IBindStatusCallback, &IID_IHttpNegotiate, &IID_IHttpSecurity,
                                        &IID_IAuthenticate};
    for (const IID* const from : ids) {
        ComPtr<IUnknown> start;
        ASSERT_EQ(stream->QueryInterface(*from, &start), S_OK);
        for (const IID* const to : ids) {
            ComPtr<IUnknown> end;
            ASSERT_EQ(start.Get()->QueryInterface(*to, &end), S_OK);
            ComPtr<IUnknown> identity;
            ComPtr<IUnknown> expected;
            ASSERT_EQ(end.As(&identity), S_OK);
            ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&expected)), S_OK);
            EXPECT_EQ(identity.Get(), expected.Get());
        }
    }
}

TEST_F(StreamIdentity, EachIdGivesItsOwnInterface) {
    ComPtr<IHttpNegotiate> negotiate;
    ComPtr<IHttpSecurity> security;
    ComPtr<IAuthenticate> authenticate;
    ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&negotiate)), S_OK);
    ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&security)), S_OK);
    ASSERT_EQ(stream->QueryInterface(IID_PPV_ARGS(&authenticate)), S_OK);
    EXPECT_EQ(negotiate.Get(), static_cast<IHttpNegotiate*>(stream.get()));
    EXPECT_EQ(security.Get(), static_cast<IHttpSecurity*>(stream.get()));
    EXPECT_EQ(authenticate.Get(), static_cast<IAuthenticate*>(stream.get()));
}

TEST_F(StreamIdentity, OtherInterfacesAreRefusedWithANullPointer) {
    const std::array<const IID*, 6> ids{&IID_IWindowForBindingUI, &IID_IServiceProvider,
                                        &IID_IHttpNegotiate2,     &IID_IBindStatusCallbackEx,
                                        &IID_IDispatch,           &IID_IStream};
    for (const IID* const id : ids) {
        void* object = &callback; // anything but null
        EXPECT_EQ(stream->QueryInterface(*id, &object), E_NOINTERFACE);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(stream->AddRef(), 2U) << "a refusal takes no reference";
}

TEST_F(StreamIdentity, ANullOutPointerIsRefused) {
    EXPECT_EQ(stream->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(stream->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
}

TEST_F(StreamIdentity, TheCountStartsAtOneAndTheLastReleaseDestroys) {
    ComPtr<FakeBinding> binding = MakeFake<FakeBinding>();
    AuthenticationStream* const counted = stream.release();
    counted->OnStartBinding(0, binding.Get());
    EXPECT_EQ(counted->AddRef(), 2U);
    EXPECT_EQ(counted->Release(), 1U);
    EXPECT_EQ(binding->Count(), 2U);
    EXPECT_EQ(counted->Release(), 0U);
    EXPECT_EQ(binding->Count(), 1U) << "what the stream held went with it";
}

TEST_F(StreamBinding, BindInfoAsksForASynchronousGetPastTheCache) {
    DWORD flags = 0xFFFFFFFF;
    BINDINFO info{};
    info.cbSize = sizeof(info);
    info.dwBindVerb = BINDVERB_POST;
    info.stgmedData.tymed = TYMED_HGLOBAL;
    EXPECT_EQ(stream->GetBindInfo(&flags, &info), S_OK);
    EXPECT_EQ(flags, 0xB0U);
    EXPECT_EQ(info.dwBindVerb, static_cast<DWORD>(BINDVERB_GET));
    EXPECT_EQ(info.stgmedData.tymed, static_cast<DWORD>(TYMED_NULL));
    EXPECT_EQ(info.cbSize, sizeof(info)) << "urlmon filled it";
}

TEST_F(StreamBinding, ANewBindingReplacesTheOldOne) {
    ComPtr<FakeBinding> first = MakeFake<FakeBinding>("first");
    ComPtr<FakeBinding> second = MakeFake<FakeBinding>("second");
    EXPECT_EQ(stream->OnStartBinding(0xFF, first.Get()), S_OK);
    EXPECT_EQ(first->Count(), 2U);
    EXPECT_EQ(stream->OnStartBinding(0xFF, second.Get()), S_OK);
    EXPECT_EQ(first->Count(), 1U);
    EXPECT_EQ(second->Count(), 2U);
    stream.reset();
    EXPECT_EQ(second->Count(), 1U);
}

TEST_F(StreamBinding, WhatItDoesNotCareForIsNotImplemented) {
    LONG priority = 7;
    EXPECT_EQ(stream->GetPriority(&priority), E_NOTIMPL);
    EXPECT_EQ(priority, 7);
    EXPECT_EQ(stream->OnLowResource(0), E_NOTIMPL);
    EXPECT_EQ(stream->OnProgress(1, 2, BINDSTATUS_CONNECTING, L"server"), E_NOTIMPL);
    EXPECT_EQ(stream->OnObjectAvailable(IID_IUnknown, nullptr), E_NOTIMPL);
}

TEST_F(StreamHttp, NoAdditionalHeadersAreASingleTerminator) {
    LPWSTR headers = nullptr;
    EXPECT_EQ(stream->BeginningTransaction(L"http://server/", L"Accept: x", 0, &headers), S_OK);
    const ComText owner(headers);
    ASSERT_NE(headers, nullptr);
    EXPECT_STREQ(headers, L"");
}

TEST_F(StreamHttp, AWindowIsTheDesktopAndNeedsSomewhereToGo) {
    HWND window = nullptr;
    EXPECT_EQ(stream->GetWindow(IID_IHttpSecurity, &window), S_OK);
    EXPECT_EQ(window, GetDesktopWindow());
    EXPECT_EQ(stream->GetWindow(IID_IHttpSecurity, nullptr), E_INVALIDARG);
}

TEST_F(StreamHttp, EverySecurityProblemIsLeftUndecided) {
    for (const DWORD problem : {0UL, 12045UL, 12055UL, 0xFFFFFFFFUL}) {
        EXPECT_EQ(stream->OnSecurityProblem(problem), S_FALSE);
    }
}

TEST_F(StreamHttp, AnAnswerAtOnceMeansALoginForm) {
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    EXPECT_EQ(stream->OnResponse(200, L"", nullptr, nullptr), S_OK);
    EXPECT_EQ(stream->Status(), AuthenticationStatus::FormBasedRequired);
}

TEST_F(StreamHttp, AnAnswerAfterCredentialsMeansThatTheyAreAccepted) {
    stream->OnResponse(200, L"", nullptr, nullptr); // stands for a challenge: the status is the same
    EXPECT_EQ(stream->OnResponse(200, L"", nullptr, nullptr), S_OK);
    EXPECT_EQ(stream->Status(), AuthenticationStatus::Authenticated);
}

TEST_F(StreamHttp, ALaterAnswerChangesNoOtherStatus) {
    const auto afterCodes = [this](std::initializer_list<DWORD> codes) {
        AuthenticationStream other(callback, L"", L"", "");
        for (const DWORD code : codes) {
            other.OnResponse(code, L"", nullptr, nullptr);
        }
        return other.Status();
    };
    EXPECT_EQ(afterCodes({200, 200, 200}), AuthenticationStatus::Authenticated);
    EXPECT_EQ(afterCodes({403, 200}), AuthenticationStatus::Failed);
    EXPECT_EQ(afterCodes({401, 200}), AuthenticationStatus::Unauthorized);
    EXPECT_EQ(afterCodes({200, 200, 401}), AuthenticationStatus::Unauthorized);
    EXPECT_EQ(afterCodes({403, 401}), AuthenticationStatus::Unauthorized);
    EXPECT_EQ(afterCodes({200, 200, 500}), AuthenticationStatus::Failed);
    EXPECT_EQ(afterCodes({401, 403}), AuthenticationStatus::Failed);
}

TEST_F(StreamHttp, AFinal401IsUnauthorized) {
    EXPECT_EQ(stream->OnResponse(401, L"", nullptr, nullptr), E_ABORT);
    EXPECT_EQ(stream->Status(), AuthenticationStatus::Unauthorized);
}

TEST_F(StreamHttp, ARefusedAnswerIsTracedWithTheWordOnly) {
    constexpr const wchar_t* kHeaders = L"HTTP/1.1 503 Out\r\nRetry-After: 7\r\n\r\n";
    stream->OnResponse(503, kHeaders, nullptr, nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{});
    const ScopedVariable words(L"MERIDO_ZANWEBBROWSER_IMPLEMENTATION", L"trace");
    stream->OnResponse(503, kHeaders, nullptr, nullptr);
    EXPECT_EQ(TakeTranscript(), (Lines{"[0] Server answered with HTTP status 503", "[0] Response headers:",
                                       "[0] HTTP/1.1 503 Out", "[0] Retry-After: 7"}));
    stream->OnResponse(401, nullptr, nullptr, nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{"[0] Server answered with HTTP status 401"});
    stream->OnResponse(200, kHeaders, nullptr, nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(StreamHttp, WithoutMemoryForTheHeadersTheTransactionEnds) {
    const ReplacedImport<struct Allocate, decltype(CoTaskMemAlloc)> allocate(
        "ole32.dll", "CoTaskMemAlloc", [](SIZE_T) -> void* { return nullptr; });
    LPWSTR headers = nullptr;
    EXPECT_EQ(stream->BeginningTransaction(L"", L"", 0, &headers), E_OUTOFMEMORY);
    EXPECT_EQ(headers, nullptr);
}

TEST_F(StreamHttp, EveryOtherCodeIsAFailure) {
    for (const DWORD code :
         {0UL, 100UL, 201UL, 204UL, 301UL, 302UL, 400UL, 403UL, 404UL, 407UL, 500UL, 503UL}) {
        AuthenticationStream other(callback, L"", L"", "");
        EXPECT_EQ(other.OnResponse(code, L"", nullptr, nullptr), E_ABORT) << code;
        EXPECT_EQ(other.Status(), AuthenticationStatus::Failed) << code;
    }
}

TEST_F(StreamData, TheBodyIsReadInPiecesOf65536BytesUntilTheEnd) {
    ComPtr<FakeStream> body = MakeFake<FakeStream>();
    body->answers = {{65536, S_OK}, {65536, S_OK}, {100, S_OK}, {0, S_FALSE}};
    EXPECT_EQ(Offer(body.Get()), S_FALSE);
    EXPECT_EQ(TakeTranscript(), (Lines{"Read 65536", "Read 65536", "Read 65536", "Read 65536"}));
    EXPECT_EQ(body->Count(), 1U) << "the medium is urlmon's to release";
}

TEST_F(StreamData, TheLastReadDecidesTheAnswer) {
    for (const HRESULT last : {E_PENDING, S_FALSE, E_FAIL, STG_E_ACCESSDENIED, E_ABORT}) {
        ComPtr<FakeStream> body = MakeFake<FakeStream>();
        body->answers = {{10, S_OK}, {5, last}};
        EXPECT_EQ(Offer(body.Get()), last);
        EXPECT_TRUE(body->answers.empty());
    }
}

TEST_F(StreamData, AStreamThatEndsWithNothingReadDoesNotHangTheProbe) {
    ComPtr<FakeStream> body = MakeFake<FakeStream>();
    body->answers = {{10, S_OK}, {0, S_OK}};
    EXPECT_EQ(Offer(body.Get()), S_OK);
    EXPECT_TRUE(body->answers.empty());
}

TEST_F(StreamData, AMediumThatIsNoStreamIsRefused) {
    for (const DWORD kind : {static_cast<DWORD>(TYMED_NULL), static_cast<DWORD>(TYMED_FILE),
                             static_cast<DWORD>(TYMED_HGLOBAL), static_cast<DWORD>(TYMED_ISTORAGE)}) {
        FORMATETC format{};
        STGMEDIUM medium{};
        medium.tymed = kind;
        EXPECT_EQ(stream->OnDataAvailable(0, 0, &format, &medium), E_ABORT) << kind;
    }
}

} // namespace
} // namespace kelda
