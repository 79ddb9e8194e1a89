// Opening a bind: the order of the system calls, each of them failing once, and who holds what while urlmon has it.
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include "du/string_utilities.h"
#include "probe_test.h"
#include "tests/support/fake_bind_context.h"
#include "tests/support/fake_binding.h"
#include "tests/support/fake_moniker.h"
#include "tests/support/fake_stream.h"
#include "tests/support/freed_blocks.h"
#include "tests/support/replaced_import.h"

using Microsoft::WRL::ComPtr;
using test_support::FakeBindContext;
using test_support::FakeBinding;
using test_support::FakeMoniker;
using test_support::FakeStream;
using test_support::FreedBlocksWatch;
using test_support::Lines;
using test_support::MakeFake;
using test_support::Record;
using test_support::ReplacedImport;

namespace kelda {
namespace {

constexpr const char* kFailure = "[3] Error while creating HTTP Stream for server authentication - ";

/// The system calls of opening are recorded; the moniker is a fake whose bind the test plays in `play`.
class OpenedStream : public AuthenticationStreamTest {
  protected:
    HRESULT createMonikerResult = S_OK;
    HRESULT createContextResult = S_OK;
    HRESULT registerResult = S_OK;
    std::function<HRESULT(IBindCtx*, IStream**)> play = [](IBindCtx*, IStream**) { return S_OK; };
    ComPtr<IBindCtx> contextToGive; // a real one where this is null
    ComPtr<IBindCtx> context;       // what the stream was given
    FakeMoniker* moniker = nullptr; // what the stream was given, and owns

    ReplacedImport<struct CreateMoniker, decltype(CreateURLMoniker)> createMoniker{
        "urlmon.dll", "CreateURLMoniker", [this](IMoniker* base, LPCWSTR url, IMoniker** result) {
            Record("CreateURLMoniker " + du::WideStrToUtf8(url) + (base == nullptr ? "" : " with a base"));
            if (SUCCEEDED(createMonikerResult)) {
                moniker = new FakeMoniker;
                moniker->bind = [this](IBindCtx* bindContext, IStream** body) {
                    return play(bindContext, body);
                };
                *result = moniker;
            }
            return createMonikerResult;
        }};
    ReplacedImport<struct CreateContext, decltype(CreateBindCtx)> createContext{
        "ole32.dll", "CreateBindCtx", [this](DWORD reserved, IBindCtx** result) {
            Record("CreateBindCtx " + std::to_string(reserved));
            if (FAILED(createContextResult)) {
                return createContextResult;
            }
            if (contextToGive) {
                contextToGive.CopyTo(result);
            } else {
                decltype(createContext)::Original(reserved, result);
            }
            context = *result;
            return createContextResult;
        }};
    ReplacedImport<struct RegisterCallback, decltype(RegisterBindStatusCallback)> registerCallback{
        "urlmon.dll", "RegisterBindStatusCallback",
        [this](IBindCtx* bindContext, IBindStatusCallback* registered, IBindStatusCallback** previous,
               DWORD reserved) {
            Record(std::string("RegisterBindStatusCallback") +
                   (registered == stream.get() ? " of the stream" : "") +
                   (previous == nullptr && reserved == 0 ? "" : " with more"));
            if (registerResult != S_OK) {
                return registerResult;
            }
            return decltype(registerCallback)::Original(bindContext, registered, previous, reserved);
        }};

    /// True while urlmon finds a callback in the context, under the name that it keeps it by.
    bool ContextLeadsToCallback() {
        std::wstring key = L"_BSCB_Holder_";
        ComPtr<IUnknown> registered;
        return SUCCEEDED(context->GetObjectParam(key.data(), &registered));
    }

    template <typename Object>
    static ULONG CountOf(Object* object) {
        object->AddRef();
        return object->Release();
    }
};

TEST_F(OpenedStream, CallsTheSystemInOrderAndKeepsTheStreamThatTheBindReturns) {
    ComPtr<FakeStream> body = MakeFake<FakeStream>();
    play = [&](IBindCtx* bindContext, IStream** result) {
        EXPECT_EQ(bindContext, context.Get());
        EXPECT_EQ(CountOf(stream.get()), 3U) << "its own, opening's and the bind context's";
        body.CopyTo(result);
        return S_OK;
    };
    EXPECT_TRUE(stream->Open("http://server/p\xC3\xA4th", L""));
    EXPECT_EQ(TakeTranscript(),
              (Lines{"CreateURLMoniker http://server/p\xC3\xA4th", "CreateBindCtx 0",
                     "RegisterBindStatusCallback of the stream", "BindToStorage IStream",
                     "[0] HTTP Stream for server authentication was created successfully"}));
    EXPECT_EQ(body->Count(), 2U);
    stream.reset();
    EXPECT_EQ(body->Count(), 1U);
}

TEST_F(OpenedStream, ASuccessWithoutAStreamIsASuccess) {
    EXPECT_TRUE(stream->Open("http://server/", L""));
    EXPECT_EQ(TakeTraceLines().back(), "[0] HTTP Stream for server authentication was created successfully");
}

TEST_F(OpenedStream, AMonikerThatCannotBeCreatedEndsIt) {
    createMonikerResult = E_INVALIDARG;
    EXPECT_FALSE(stream->Open("::", L""));
    EXPECT_EQ(TakeTranscript(),
              (Lines{"CreateURLMoniker ::", std::string(kFailure) + "CreateURLMoniker() failed"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
}

TEST_F(OpenedStream, ABindContextThatCannotBeCreatedEndsIt) {
    createContextResult = E_OUTOFMEMORY;
    EXPECT_FALSE(stream->Open("http://server/", L""));
    EXPECT_EQ(TakeTraceLines(), (Lines{std::string(kFailure) + "CreateBindCtx() failed"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    stream.reset();
    EXPECT_EQ(TakeTranscript(), (Lines{"moniker gone"}));
}

TEST_F(OpenedStream, ACallbackThatCannotBeRegisteredEndsIt) {
    registerResult = E_FAIL;
    EXPECT_FALSE(stream->Open("http://server/", L""));
    EXPECT_EQ(TakeTraceLines(), (Lines{std::string(kFailure) + "RegisterBindStatusCallback() failed"}));
    EXPECT_EQ(stream->Status(), AuthenticationStatus::None);
    EXPECT_EQ(CountOf(stream.get()), 1U);
}

TEST_F(OpenedStream, ABindThatFailsIsTraced) {
    play = [](IBindCtx*, IStream**) { return INET_E_DOWNLOAD_FAILURE; };
    EXPECT_FALSE(stream->Open("http://server/", L""));
    EXPECT_EQ(TakeTraceLines(), (Lines{std::string(kFailure) + "BindToStorage() failed"}));
}

TEST_F(OpenedStream, AdditionalHeadersAreHandedToTheTransaction) {
    LPWSTR headers = nullptr;
    play = [&](IBindCtx*, IStream**) { return stream->BeginningTransaction(L"", L"", 0, &headers); };
    EXPECT_TRUE(stream->Open("http://server/", L"X-A: 1\r\n"));
    EXPECT_STREQ(headers, L"X-A: 1\r\n");
    CoTaskMemFree(headers);
}

TEST_F(OpenedStream, TheEndOfTheBindReleasesBindingThenContextThenMoniker) {
    const ComPtr<FakeBindContext> fakeContext = MakeFake<FakeBindContext>();
    contextToGive = fakeContext;
    registerResult = S_FALSE; // not registered with the real stack: the context is none of its own
    const ComPtr<FakeBinding> binding = MakeFake<FakeBinding>();
    play = [&](IBindCtx*, IStream**) {
        stream->OnStartBinding(0xFF, binding.Get());
        TakeTranscript();
        binding->recordsReleases = fakeContext->recordsReleases = moniker->recordsReleases = true;
        stream->OnStopBinding(E_FAIL, L"");
        binding->recordsReleases = fakeContext->recordsReleases = moniker->recordsReleases = false;
        return E_FAIL;
    };
    EXPECT_FALSE(stream->Open("http://server/", L""));
    EXPECT_EQ(TakeTranscript(),
              (Lines{"GetBindResult", "[0] GetBindResult() = 0x0", "SessionAuthenticationComplete 3",
                     "binding released", "context released", "moniker released",
                     std::string(kFailure) + "BindToStorage() failed", "moniker gone"}));
}

TEST_F(OpenedStream, MonikerAndContextOutliveTheCallThatReleasesThem) {
    play = [this](IBindCtx* bindContext, IStream**) {
        stream->OnStopBinding(E_FAIL, L"");
        EXPECT_EQ(moniker->Count(), 2U) << "the fake's own reference and that of the call";
        EXPECT_EQ(CountOf(bindContext), 2U) << "the test's reference and that of the call";
        return E_FAIL;
    };
    EXPECT_FALSE(stream->Open("http://server/", L""));
    EXPECT_EQ(CountOf(context.Get()), 1U);
}

TEST_F(OpenedStream, ReferencesThatComeBackWhileItIsDestroyedDestroyItOnce) {
    ComPtr<FakeStream> body = MakeFake<FakeStream>();
    play = [&](IBindCtx*, IStream** result) {
        body.CopyTo(result);
        return S_OK; // without a word of the bind's end
    };
    EXPECT_TRUE(stream->Open("http://server/", L""));
    body->onGone = [held = stream.get()] { held->Release(); };
    body.Reset();
    stream->Release(); // its own; left is that of opening, which the body gives back
    const void* const address = stream.get();
    int freed = 0;
    {
        const FreedBlocksWatch watch(
            [&](const void* block, std::size_t) { freed += block == address ? 1 : 0; });
        stream.reset();
    }
    EXPECT_EQ(freed, 1);
}

TEST_F(OpenedStream, ABindContextThatOutlivesTheBindNoLongerLeadsToIt) {
    for (const HRESULT result : {S_OK, E_FAIL}) {
        play = [this, result](IBindCtx*, IStream**) {
            EXPECT_TRUE(ContextLeadsToCallback());
            stream->OnStartBinding(0, nullptr);
            stream->OnStopBinding(result, L"");
            return result;
        };
        stream->Open("http://server/", L"");
        EXPECT_FALSE(ContextLeadsToCallback());
        EXPECT_EQ(CountOf(stream.get()), 1U);
    }
}

TEST_F(OpenedStream, ABindContextThatOutlivesABindThatNeverStoppedNoLongerLeadsToIt) {
    play = [](IBindCtx*, IStream**) { return E_FAIL; };
    stream->Open("http://server/", L"");
    stream.reset();
    EXPECT_FALSE(ContextLeadsToCallback());
    EXPECT_EQ(CountOf(context.Get()), 1U);
}

} // namespace
} // namespace kelda
