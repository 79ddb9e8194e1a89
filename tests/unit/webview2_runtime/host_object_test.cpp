// The host object in the page, row by row: which calls an expression of the page's comes to.
#include "tests/unit/webview2_runtime/runtime_test.h"

#include <oleauto.h>

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedAnswer;
using test_support::CannedServer;
using Calls = std::vector<std::string>;

constexpr DISPID kMember = 888111888;

/// Answers for IDispatch and for nothing else, as hosts' objects may, and writes down what it is asked. Lives on the stack
/// of its test; the count has to be back at 0 in the end.
class FakeDispatch final : public IDispatch {
  public:
    FakeDispatch(std::string name, Calls& calls) : name_(std::move(name)), calls_(calls) {
        VariantInit(&result);
    }
    ~FakeDispatch() { EXPECT_EQ(references, 0U) << name_; }
    FakeDispatch(const FakeDispatch&) = delete;
    FakeDispatch& operator=(const FakeDispatch&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        if (id != IID_IDispatch) {
            calls_.push_back(name_ + " asked for another interface");
            *out = nullptr;
            return E_NOINTERFACE;
        }
        *out = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        calls_.push_back(name_ + " GetTypeInfoCount");
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) override {
        *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT /*count*/, LCID /*locale*/,
                                            DISPID* ids) override {
        const std::wstring wide = names[0];
        calls_.push_back(name_ + " names " + std::string(wide.begin(), wide.end()));
        *ids = kMember;
        return wide == L"norv" ? S_OK : E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID /*id*/, LCID /*locale*/, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* out, EXCEPINFO* /*exception*/,
                                     UINT* /*badArgument*/) override {
        calls_.push_back(name_ + " invoke " + std::to_string(member) + " flags " + std::to_string(flags) +
                         (parameters == nullptr ? " without parameters"
                                                : " arguments " + std::to_string(parameters->cArgs)));
        if (onInvoke) {
            onInvoke(*parameters);
        }
        if (object != nullptr) {
            object->AddRef();
            V_VT(out) = VT_DISPATCH;
            V_DISPATCH(out) = object;
        } else {
            VariantCopy(out, &result);
        }
        return outcome;
    }

    IDispatch* object = nullptr; ///< the result of `Invoke`; null: `result` is
    VARIANT result{};
    HRESULT outcome = S_OK;
    std::function<void(DISPPARAMS& parameters)> onInvoke;
    ULONG references = 0;

  private:
    std::string name_;
    Calls& calls_;
};

CannedAnswer Page(const std::string& request) {
    const bool framed = request.starts_with("GET /framed ");
    return Answer(200, "Content-Type: text/html\r\n",
                  framed ? "<link rel=icon href=data:,><iframe src=/inner></iframe>"
                         : "<link rel=icon href=data:,>");
}

const std::string kNames = "host names norv";
const std::string kGet = "host invoke 888111888 flags 2 arguments 0";
const std::string kCall = "norv invoke 0 flags 1 arguments 0";

class HostObjectTest : public WebViewTest {
  protected:
    void SetUp() override {
        WebViewTest::SetUp();
        ASSERT_TRUE(view);
        host.object = &member;
        ASSERT_EQ(Add(L"external"), S_OK);
        AddDocumentScript(L"window.external = chrome.webview.hostObjects.external;");
        ASSERT_TRUE(Load(server.Url()));
    }
    void TearDown() override {
        WebViewTest::TearDown();
        EXPECT_EQ(host.references, 0U);
        EXPECT_EQ(member.references, 0U);
    }

    HRESULT Add(const wchar_t* name) {
        VARIANT variant;
        VariantInit(&variant);
        V_VT(&variant) = VT_DISPATCH;
        V_DISPATCH(&variant) = &host;
        return view->AddHostObjectToScript(name, &variant);
    }

    /// Runs a script with `await` in it; what it throws comes as its message.
    std::wstring RunAsync(const std::wstring& script) {
        return Run(L"(async () => { try { " + script +
                   L" } catch (error) { return 'thrown: ' + error.message; } })()");
    }

    Calls calls;
    FakeDispatch host{"host", calls};
    FakeDispatch member{"norv", calls};
    CannedServer server{Page};
};

TEST_F(HostObjectTest, ReadingAPropertyAloneCallsNothing) {
    EXPECT_EQ(Run(L"window.external.norv; 'done'"), L"\"done\"");
    EXPECT_EQ(calls, Calls{});
}

TEST_F(HostObjectTest, WaitingForAPropertyReadsIt) {
    EXPECT_EQ(RunAsync(L"return typeof await window.external.norv;"), L"\"function\"");
    EXPECT_EQ(calls, (Calls{kNames, kGet}));
}

TEST_F(HostObjectTest, CallingWhatWasWaitedForCallsItsDefaultMember) {
    EXPECT_EQ(RunAsync(L"const norv = await window.external.norv; return await norv();"), L"null");
    EXPECT_EQ(calls, (Calls{kNames, kGet, kCall}));
}

TEST_F(HostObjectTest, CallingAPropertyMakesTheSameThreeCalls) {
    EXPECT_EQ(RunAsync(L"return await window.external.norv();"), L"null");
    EXPECT_EQ(calls, (Calls{kNames, kGet, kCall}));
}

TEST_F(HostObjectTest, ACallThatNobodyWaitsForIsMadeAsWell) {
    Run(L"window.external.norv(); 1");
    EXPECT_TRUE(PumpUntil([&] { return calls.size() == 3; }));
    EXPECT_EQ(calls, (Calls{kNames, kGet, kCall}));
}

TEST_F(HostObjectTest, AnUnknownNameRejectsThePromise) {
    EXPECT_EQ(RunAsync(L"return await window.external.Norv;"),
              L"\"thrown: The host object has no such member. (0x80004001)\"");
    EXPECT_EQ(calls, Calls{"host names Norv"});
}

TEST_F(HostObjectTest, AFailureOfTheObjectRejectsThePromise) {
    member.outcome = E_ACCESSDENIED;
    EXPECT_EQ(RunAsync(L"return await window.external.norv();"),
              L"\"thrown: The host object refused. (0x80070005)\"");
}

TEST_F(HostObjectTest, AnAbsentObjectRejectsThePromise) {
    EXPECT_EQ(RunAsync(L"return await chrome.webview.hostObjects.absent.norv();"),
              L"\"thrown: There is no such host object.\"");
    EXPECT_EQ(calls, Calls{});
}

TEST_F(HostObjectTest, ArgumentsArriveLastFirstAndResultsComeBack) {
    std::vector<VARTYPE> types;
    std::wstring text;
    member.onInvoke = [&](DISPPARAMS& parameters) {
        for (UINT i = 0; i < parameters.cArgs; ++i) {
            types.push_back(V_VT(&parameters.rgvarg[i]));
        }
        if (parameters.cArgs == 5) {
            text = V_BSTR(&parameters.rgvarg[4]);
        }
    };
    V_VT(&member.result) = VT_I4;
    V_I4(&member.result) = 42;
    EXPECT_EQ(RunAsync(L"return await window.external.norv('gr\u00fcn', 7, 1.5, true, null);"), L"42");
    EXPECT_EQ(types, (std::vector<VARTYPE>{VT_NULL, VT_BOOL, VT_R8, VT_I4, VT_BSTR}));
    EXPECT_EQ(text, L"gr\u00fcn");
    EXPECT_EQ(RunAsync(L"return await window.external.norv({});"),
              L"\"thrown: The host object cannot take such an argument.\"");
}

TEST_F(HostObjectTest, AScriptKeepsWhatItGotButARemovedNameIsGone) {
    EXPECT_EQ(RunAsync(L"window.kept = await window.external; return 1;"), L"1");
    EXPECT_EQ(view->RemoveHostObjectFromScript(L"external"), S_OK);
    EXPECT_EQ(view->RemoveHostObjectFromScript(L"external"), E_INVALIDARG);
    EXPECT_EQ(RunAsync(L"return await window.kept.norv();"), L"null");
    EXPECT_EQ(RunAsync(L"return await window.external.norv();"),
              L"\"thrown: There is no such host object.\"");
    EXPECT_GT(host.references, 0U);
}

TEST_F(HostObjectTest, ANewDocumentLetsGoOfWhatTheOldOneGot) {
    EXPECT_EQ(RunAsync(L"window.kept = await window.external.norv; return 1;"), L"1");
    EXPECT_EQ(member.references, 1U);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(RunAsync(L"await window.external; return 2;"), L"2");
    EXPECT_EQ(member.references, 0U);
}

TEST_F(HostObjectTest, OnlyObjectsCanBeAdded) {
    VARIANT variant;
    VariantInit(&variant);
    EXPECT_EQ(view->AddHostObjectToScript(L"empty", &variant), E_INVALIDARG);
    V_VT(&variant) = VT_DISPATCH;
    V_DISPATCH(&variant) = nullptr;
    EXPECT_EQ(view->AddHostObjectToScript(L"null", &variant), E_INVALIDARG);
    EXPECT_EQ(view->AddHostObjectToScript(L"external", nullptr), E_POINTER);
    EXPECT_EQ(Add(L""), E_INVALIDARG);
}

TEST_F(HostObjectTest, TheObjectMayCloseTheWebViewWhileItIsCalled) {
    member.onInvoke = [&](DISPPARAMS&) {
        controller->Close();
        ReleaseAll();
    };
    member.object = &host; // handed out after the end
    Run(L"setTimeout(() => window.external.norv()); 1");
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_EQ(calls, (Calls{kNames, kGet, kCall}));
    EXPECT_EQ(host.references, 0U);
}

TEST_F(HostObjectTest, FramesAreRefused) {
    ASSERT_TRUE(Load(server.Url(L"/framed")));
    EXPECT_EQ(RunAsync(L"return await frames[0].chrome.webview.hostObjects.external.norv();"),
              L"\"thrown: Host objects are not there in frames.\"");
    EXPECT_EQ(calls, Calls{});
}

} // namespace
} // namespace webview2_runtime_test
