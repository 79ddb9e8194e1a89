// What the supply leaves as it is: such a bind looks exactly like one by urlmon alone.
#include <utility>

#include <gmock/gmock.h>

#include "challenge_server.h"
#include "recording_caller.h"
#include "testbed/windows_gaps/windows_gaps.h"

using Microsoft::WRL::ComPtr;
using test_support::Answer;
using test_support::CannedServer;
using test_support::Record;

namespace windows_gaps_test {
namespace {

/// Each request gets a connection of its own, so that each bind has to connect.
const std::string kAlone = "Connection: close\r\n";

class PassThrough : public BindTest {
  protected:
    /// What a bind by urlmon alone looks like; the second one, as only the first looks up the server's name.
    Lines ByUrlmon(const std::wstring& url) {
        Bind(url, caller_.Get(), MonikerOf::Urlmon);
        TakeTranscript();
        Bind(url, caller_.Get(), MonikerOf::Urlmon);
        return TakeTranscript();
    }
};

TEST_F(PassThrough, BindWithoutAChallengeLooksTheSame) {
    const CannedServer server(
        [](const std::string&) { return Answer(200, kAlone + "Content-Type: text/plain\r\n", "a body"); });
    caller_->recordsProgress = true;
    caller_->dataResult = [](HRESULT) { return S_OK; };
    const Lines expected = ByUrlmon(server.Url());

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), expected);
    EXPECT_THAT(expected, testing::Contains("OnProgress 13"));
}

TEST_F(PassThrough, RefusedConnectionLooksTheSame) {
    std::wstring url;
    {
        const CannedServer gone([](const std::string&) { return Answer(200, "", ""); });
        url = gone.Url();
    }
    caller_->recordsProgress = true;
    const Lines expected = ByUrlmon(url);

    Bind(url, caller_.Get());

    EXPECT_EQ(TakeTranscript(), expected);
    EXPECT_THAT(expected, testing::Contains("OnStopBinding 0x800C0008"));
}

TEST_F(PassThrough, AnswerWithoutChallengeHeaderLooksTheSame) {
    const CannedServer server([](const std::string&) { return Answer(401, "", "denied"); });
    caller_->dataResult = [](HRESULT) { return S_OK; };
    const Lines expected = ByUrlmon(server.Url());

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(TakeTranscript(), expected);
}

TEST_F(PassThrough, BindWhoseCallerRefusesItsStartEndsAsByUrlmon) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });
    const std::pair<HRESULT RecordingCaller::*, Lines> cases[] = {
        {&RecordingCaller::bindInfoResult, {"GetBindInfo", "BindToStorage 0x80070057"}},
        {&RecordingCaller::startResult,
         {"GetBindInfo", "OnStartBinding 0x000000FF", "OnStopBinding 0x800C0008",
          "BindToStorage 0x800C0008"}},
    };
    for (const auto& [result, expected] : cases) {
        caller_.Get()->*result = E_INVALIDARG;

        Bind(server.Url(), caller_.Get());

        EXPECT_EQ(TakeTranscript(), expected);
        caller_.Get()->*result = S_OK;
    }
}

TEST_F(PassThrough, ServicesAreLookedUpInTheSameWay) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });
    caller_->offering = Offering::ByService;
    caller_->dataResult = [](HRESULT) { return S_OK; };
    Bind(server.Url(), caller_.Get(), MonikerOf::Urlmon);
    const Lines expected = std::exchange(caller_->services, {});

    Bind(server.Url(), caller_.Get());

    EXPECT_EQ(caller_->services, expected);
    EXPECT_FALSE(expected.empty());
}

TEST_F(PassThrough, BindWithoutACallbackWorks) {
    const CannedServer server([](const std::string&) { return Answer(200, "", "a body"); });

    Bind(server.Url(), nullptr);
    const Lines transcript = TakeTranscript();
    Bind(server.Url(), nullptr, MonikerOf::Urlmon);

    EXPECT_EQ(transcript, TakeTranscript());
}

TEST_F(PassThrough, AsynchronousBindLooksTheSameEvenWithAChallenge) {
    const CannedServer server(Protected());
    caller_->bindFlags |= BINDF_ASYNCHRONOUS | BINDF_ASYNCSTORAGE;
    caller_->offers = {{S_OK, L"ann", L"secret"}};
    const auto bindToItsEnd = [&](MonikerOf whose) {
        caller_->stopped = false;
        EXPECT_EQ(Bind(server.Url(), caller_.Get(), whose), MK_S_ASYNCHRONOUS);
        EXPECT_TRUE(PumpUntil([&] { return caller_->stopped; }));
        Lines transcript = TakeTranscript();
        std::erase_if(transcript, [](const std::string& line) {
            return line.starts_with("BindToStorage");
        }); // at any time
        return transcript;
    };

    const Lines transcript = bindToItsEnd(MonikerOf::Import);

    EXPECT_EQ(transcript, bindToItsEnd(MonikerOf::Urlmon));
    EXPECT_EQ(caller_->offers.size(), 1U);
    EXPECT_THAT(transcript, testing::Contains("OnResponse 401"));
}

TEST_F(PassThrough, BindToAnObjectIsUrlmons) {
    const CannedServer server([](const std::string&) {
        return Answer(200, "Content-Type: application/x-of-no-class\r\n", "a body");
    });
    const auto bindToObject = [&](MonikerOf whose) {
        const auto moniker = MakeMoniker(server.Url(), whose);
        ComPtr<IBindCtx> context;
        CreateBindCtx(0, &context);
        RegisterBindStatusCallback(context.Get(), caller_.Get(), nullptr, 0);
        ComPtr<IUnknown> object;
        Record("result " +
               std::to_string(moniker->BindToObject(context.Get(), nullptr, IID_PPV_ARGS(&object))));
        return TakeTranscript();
    };

    const Lines transcript = bindToObject(MonikerOf::Import);

    EXPECT_EQ(transcript, bindToObject(MonikerOf::Urlmon));
    EXPECT_THAT(transcript, testing::Contains("OnResponse 200"));
}

TEST_F(PassThrough, MonikerAnswersAsTheRealOne) {
    const auto moniker = MakeMoniker(L"http://example.invalid/a?b");
    const auto real = MakeMoniker(L"http://example.invalid/a?b", MonikerOf::Urlmon);
    ComPtr<IBindCtx> context;
    CreateBindCtx(0, &context);

    LPOLESTR name = nullptr;
    ASSERT_EQ(moniker->GetDisplayName(context.Get(), nullptr, &name), S_OK);
    EXPECT_STREQ(name, L"http://example.invalid/a?b");
    CoTaskMemFree(name);
    CLSID id{};
    ASSERT_EQ(moniker->GetClassID(&id), S_OK);
    CLSID realId{};
    real->GetClassID(&realId);
    EXPECT_EQ(id, realId);
    DWORD kind = 0;
    EXPECT_EQ(moniker->IsSystemMoniker(&kind), S_OK);
    EXPECT_EQ(kind, static_cast<DWORD>(MKSYS_URLMONIKER));
    EXPECT_EQ(moniker->IsEqual(real.Get()), S_OK);
    ComPtr<IUriContainer> container;
    EXPECT_EQ(moniker.As(&container), S_OK);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(moniker.As(&identity), S_OK);
    EXPECT_EQ(identity.Get(), moniker.Get());
}

TEST_F(PassThrough, RelativeMonikerFindsItsBase) {
    const auto base = MakeMoniker(L"http://example.invalid/folder/a");
    ComPtr<IMoniker> relative;
    ASSERT_EQ(CreateURLMoniker(base.Get(), L"b", &relative), S_OK);

    LPOLESTR name = nullptr;
    ASSERT_EQ(relative->GetDisplayName(nullptr, nullptr, &name), S_OK);
    EXPECT_STREQ(name, L"http://example.invalid/folder/b");
    CoTaskMemFree(name);
}

TEST_F(PassThrough, UnusableUrlIsRefusedAsByUrlmon) {
    ComPtr<IMoniker> moniker;
    EXPECT_EQ(CreateURLMoniker(nullptr, nullptr, &moniker), E_INVALIDARG);
    EXPECT_EQ(moniker.Get(), nullptr);
}

TEST_F(PassThrough, BindWithoutAContextIsRefused) {
    ComPtr<IStream> stream;
    EXPECT_EQ(MakeMoniker(L"http://example.invalid/")->BindToStorage(nullptr, nullptr, IID_PPV_ARGS(&stream)),
              E_INVALIDARG);
}

} // namespace
} // namespace windows_gaps_test
