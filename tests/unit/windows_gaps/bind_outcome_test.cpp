// How a supplied bind ends: refused by its caller, ended while asking, read in pieces, cut off by the other side.
#include <algorithm>
#include <array>
#include <cwchar>

#include <windows.h>

#include <gmock/gmock.h>
#include <wininet.h>

#include "challenge_server.h"
#include "freed_by_library.h"
#include "recording_caller.h"
#include "testbed/support/import_patch.h"

using test_support::Answer;
using test_support::CannedAnswer;
using test_support::CannedServer;

namespace windows_gaps_test {
namespace {

const Lines kStart = {"GetBindInfo", "OnStartBinding 0x000000FF", "BeginningTransaction"};

Lines After(Lines start, const Lines& rest) {
    start.insert(start.end(), rest.begin(), rest.end());
    return start;
}

/// Answers whose body is whole, empty, large, or not coming at all.
std::vector<CannedAnswer> BodiesOf(int status, const std::string& headers) {
    return {
        Answer(status, headers, "a body"), Answer(status, headers, ""),
        Answer(status, headers, std::string(300'000, 'x')),
        CannedAnswer{"HTTP/1.1 " + std::to_string(status) + " No\r\nContent-Length: 9\r\n" + headers + "\r\n",
                     "too late!"}};
}

using BindOutcome = BindTest;

TEST_F(BindOutcome, OfARefusedAnswerIsTheRefusal) {
    for (const CannedAnswer& answer : BodiesOf(403, "")) {
        const CannedServer server([&](const std::string&) { return answer; });
        caller_->onResponse = [](DWORD) { return E_ABORT; };

        EXPECT_EQ(Bind(server.Url(), caller_.Get()), E_ABORT);

        EXPECT_EQ(TakeTranscript(),
                  After(kStart, {"OnResponse 403", "OnStopBinding 0x80004004", "BindToStorage 0x80004004"}));
    }
}

TEST_F(BindOutcome, KeepsTheCodeOfTheRefusal) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });
    caller_->onResponse = [](DWORD) { return INET_E_INVALID_REQUEST; };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(),
              After(kStart, {"OnResponse 200", "OnStopBinding 0x800C000C", "BindToStorage 0x800C000C"}));
}

TEST_F(BindOutcome, OfARefusedFinalChallengeIsTheRefusal) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, std::nullopt, std::nullopt}};
    caller_->onResponse = [](DWORD) { return E_ABORT; };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), After(kStart, {"Authenticate", "OnResponse 401", "OnStopBinding 0x80004004",
                                               "BindToStorage 0x80004004"}));
}

TEST_F(BindOutcome, OfAFailedQuestionIsItsFailure) {
    for (const CannedAnswer& answer : BodiesOf(401, kChallenge)) {
        const CannedServer server([&](const std::string&) { return answer; });
        caller_->offers = {{E_INVALIDARG, L"ann", L"secret"}};

        EXPECT_EQ(Bind(server.Url(), caller_.Get()), E_INVALIDARG);

        EXPECT_EQ(TakeTranscript(),
                  After(kStart, {"Authenticate", "OnStopBinding 0x80070057", "BindToStorage 0x80070057"}));
        EXPECT_EQ(server.Requests().size(), 1U);
    }
}

TEST_F(BindOutcome, OfASecondFailedQuestionIsItsFailure) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, L"ann", L"guess"}, {E_INVALIDARG, std::nullopt, std::nullopt}};

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), After(kStart, {"Authenticate", "Authenticate", "OnStopBinding 0x80070057",
                                               "BindToStorage 0x80070057"}));
}

TEST_F(BindOutcome, IsAnAbortWhereTheCallerAbortsWhileItIsAsked) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, L"ann", L"secret"}};
    caller_->onAuthenticate = [&](LPWSTR, LPWSTR) { EXPECT_EQ(caller_->binding->Abort(), S_OK); };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(),
              After(kStart, {"Authenticate", "OnStopBinding 0x80004004", "BindToStorage 0x80004004"}));
    EXPECT_EQ(server.Requests().size(), 1U);
}

TEST_F(BindOutcome, OfALongBodyIsAllOfItHoweverTheReadsEnd) {
    const std::array<std::function<HRESULT(HRESULT)>, 4> results = {
        [](HRESULT end) { return end; }, [](HRESULT) { return S_OK; }, [](HRESULT) { return S_FALSE; },
        [](HRESULT) { return E_PENDING; }};
    const std::string body(300'000, 'x');
    for (const auto& result : results) {
        CannedServer server([&](const std::string&) {
            return CannedAnswer{"HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                                    "\r\n\r\n" + body.substr(0, 100'000),
                                body.substr(100'000, 100'000), body.substr(200'000)};
        });
        caller_->onData = [&] { server.SendNextPiece(); };
        caller_->dataResult = result;

        Bind(server.Url(), caller_.Get());

        EXPECT_EQ(caller_->body.size(), body.size());
        const Lines transcript = TakeTranscript();
        EXPECT_THAT(transcript, testing::Contains("OnStopBinding S_OK").Times(1));
        EXPECT_EQ(transcript.back(), "BindToStorage S_OK and a stream");
    }
}

TEST_F(BindOutcome, OfARefusedBodyIsTheRefusal) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });
    caller_->dataResult = [](HRESULT) { return E_ABORT; };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), After(kStart, {"OnResponse 200", "OnDataAvailable, read 6 so far",
                                               "OnStopBinding 0x80004004", "BindToStorage 0x80004004"}));
}

TEST_F(BindOutcome, TellsTheStatusByTheBindingOfTheLastAttempt) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, L"ann", L"secret"}};
    HRESULT atStart = S_OK;
    caller_->onStart = [&](IBinding* binding) {
        Microsoft::WRL::ComPtr<IWinInetHttpInfo> info;
        atStart = binding->QueryInterface(IID_PPV_ARGS(&info));
    };
    DWORD status = 0;
    caller_->onStop = [&] {
        Microsoft::WRL::ComPtr<IWinInetHttpInfo> info;
        ASSERT_EQ(caller_->binding.As(&info), S_OK);
        DWORD size = sizeof(status);
        info->QueryInfo(HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr, nullptr);
    };

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(atStart, E_NOINTERFACE);
    EXPECT_EQ(status, 200U);
}

TEST_F(BindOutcome, IsStillToldByABindingThatIsKept) {
    const CannedServer server(Protected());
    caller_->offers = {{E_INVALIDARG, std::nullopt, std::nullopt}};
    Microsoft::WRL::ComPtr<IBinding> kept;
    caller_->onStart = [&](IBinding* binding) { kept = binding; };
    Bind(server.Url(), caller_.Get());

    CLSID protocol{};
    DWORD result = 0;
    LPOLESTR text = nullptr;
    EXPECT_EQ(kept->GetBindResult(&protocol, &result, &text, nullptr), S_OK);
    EXPECT_EQ(static_cast<HRESULT>(result), E_INVALIDARG);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(kept->GetBindResult(&protocol, nullptr, &text, nullptr), E_INVALIDARG);
}

TEST_F(BindOutcome, MayBeReleasedInTheMidstOfItsEnd) {
    const CannedServer server(Protected());
    caller_->offers = {{S_OK, L"ann", L"secret"}};
    Microsoft::WRL::ComPtr<IMoniker> moniker = MakeMoniker(server.Url());
    IBindCtx* context = nullptr;
    ASSERT_EQ(CreateBindCtx(0, &context), S_OK);
    RegisterBindStatusCallback(context, caller_.Get(), nullptr, 0);
    IMoniker* bound = moniker.Detach();
    caller_->onStop = [&] {
        caller_->binding.Reset();
        context->Release();
        bound->Release();
    };

    IStream* stream = nullptr;
    EXPECT_EQ(bound->BindToStorage(context, nullptr, IID_IStream, reinterpret_cast<void**>(&stream)), S_OK);

    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->Release(), 0U);
}

TEST_F(BindOutcome, LeavesTheCallerRegisteredAsItWas) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });
    const auto moniker = MakeMoniker(server.Url());
    Microsoft::WRL::ComPtr<IBindCtx> context;
    ASSERT_EQ(CreateBindCtx(0, &context), S_OK);
    RegisterBindStatusCallback(context.Get(), caller_.Get(), nullptr, 0);
    Microsoft::WRL::ComPtr<IStream> stream;
    moniker->BindToStorage(context.Get(), nullptr, IID_PPV_ARGS(&stream));

    const Microsoft::WRL::ComPtr<IBindStatusCallback> next = [] {
        Microsoft::WRL::ComPtr<IBindStatusCallback> made;
        *made.GetAddressOf() = new RecordingCaller;
        return made;
    }();
    Microsoft::WRL::ComPtr<IBindStatusCallback> previous;
    RegisterBindStatusCallback(context.Get(), next.Get(), &previous, 0);

    EXPECT_EQ(previous.Get(), static_cast<IBindStatusCallback*>(caller_.Get()));
}

/// Sees the texts of an offer at the moment when they are given back.
class FreedTexts {
  public:
    static void Watch(LPWSTR userName, LPWSTR password) {
        texts = {userName, password};
        lengths = {std::wcslen(userName), std::wcslen(password)};
        wiped = 0;
    }
    static void WINAPI Free(LPVOID block) {
        for (std::size_t index = 0; index < texts.size(); ++index) {
            const auto* text = static_cast<const wchar_t*>(block);
            if (block == texts[index] && block != nullptr) {
                wiped += std::all_of(text, text + lengths[index],
                                     [](wchar_t character) { return character == 0; });
                texts[index] = nullptr;
            }
        }
        CoTaskMemFree(block);
    }

    static inline std::array<void*, 2> texts{};
    static inline std::array<std::size_t, 2> lengths{};
    static inline int wiped = 0;
};

TEST_F(BindOutcome, LeavesNoOfferedTextInMemory) {
    HMODULE gaps = GetModuleHandleW(L"windows_gaps.dll");
    void* original =
        testbed::PatchImport(gaps, "ole32.dll", "CoTaskMemFree", reinterpret_cast<void*>(&FreedTexts::Free));
    ASSERT_NE(original, nullptr);
    caller_->onAuthenticate = &FreedTexts::Watch;
    for (const HRESULT result : {S_OK, E_INVALIDARG}) {
        const CannedServer server(Protected());
        caller_->offers = {{result, L"ann", L"secret"}};
        caller_->onResponse = [](DWORD) {
            EXPECT_EQ(FreedTexts::wiped, 2) << "they are kept longer than they are needed";
            return S_OK;
        };

        Bind(server.Url(), caller_.Get());

        EXPECT_EQ(FreedTexts::wiped, 2);
    }
    testbed::PatchImport(gaps, "ole32.dll", "CoTaskMemFree", original);
}

TEST_F(BindOutcome, LeavesNothingOfAHeaderThatItMade) {
    const test_support::HiddenText password(24, 1);
    const CannedServer server(Protected("never", "WWW-Authenticate: Digest x, Basic realm=\"D\"\r\n"));
    caller_->offers = {{S_OK, L"ann", std::wstring(password.Length(), L' ')}};
    caller_->onAuthenticate = [&](LPWSTR /*userName*/, LPWSTR offered) { password.PutInto(offered); };
    const FreedByLibrary freed(password);

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(server.Requests().size(), 2U);
    EXPECT_EQ(FreedByLibrary::Found(), 0U);
}

} // namespace
} // namespace windows_gaps_test
