// The environment on a real Chromium: what it is made with, and what it makes.
#include <ios>
#include <thread>

#include <gmock/gmock.h>
#include <objbase.h>

#include "tests/support/scoped_variable.h"
#include "tests/unit/webview2_runtime/runtime_test.h"
#include "webview2_not_implemented.h"

namespace webview2_runtime_test {
namespace {

/// A host's options with one word in them, counting how often they are read.
class FakeOptions final : public webview2::NotImplemented<ICoreWebView2EnvironmentOptions> {
  public:
    class CrashReporting final : public webview2::NotImplemented<ICoreWebView2EnvironmentOptions3> {
      public:
        explicit CrashReporting(FakeOptions& owner) : owner_(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
            return owner_.QueryInterface(id, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }
        HRESULT STDMETHODCALLTYPE get_IsCustomCrashReportingEnabled(BOOL* value) override {
            *value = TRUE;
            ++owner_.crashReportingReads;
            return S_OK;
        }

      private:
        FakeOptions& owner_;
    };

    explicit FakeOptions(std::wstring text) : language(std::move(text)) {}
    virtual ~FakeOptions() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = id == __uuidof(ICoreWebView2EnvironmentOptions3) ? &crashReporting_ : nullptr;
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE get_AdditionalBrowserArguments(LPWSTR* value) override {
        return Copy(L"", value);
    }
    HRESULT STDMETHODCALLTYPE get_Language(LPWSTR* value) override {
        ++languageReads;
        return languageResult == S_OK ? Copy(language, value) : languageResult;
    }
    HRESULT STDMETHODCALLTYPE get_TargetCompatibleBrowserVersion(LPWSTR* value) override {
        return Copy(L"146.0.3856.49", value);
    }
    HRESULT STDMETHODCALLTYPE get_AllowSingleSignOnUsingOSPrimaryAccount(BOOL* allow) override {
        *allow = TRUE;
        return S_OK;
    }

    std::wstring language;
    HRESULT languageResult = S_OK;
    int languageReads = 0;
    int crashReportingReads = 0;
    ULONG references = 1;

  private:
    static HRESULT Copy(const std::wstring& text, LPWSTR* value) {
        *value = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
        text.copy(*value, text.size());
        (*value)[text.size()] = L'\0';
        return S_OK;
    }

    CrashReporting crashReporting_{*this};
};

std::wstring FolderOf(const ComPtr<ICoreWebView2Environment>& environment) {
    ComPtr<ICoreWebView2Environment7> environment7;
    EXPECT_EQ(environment.As(&environment7), S_OK);
    return TextFrom([&](LPWSTR* text) { return environment7->get_UserDataFolder(text); });
}

class EnvironmentTest : public RuntimeTest {};

TEST_F(EnvironmentTest, SaysTheVersionAndTheFolderThatItWasMadeWith) {
    const test_support::ScopedVariable version(L"KELDA_TEST_RUNTIME_VERSION", L"115.0.1901.183");
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return environment->get_BrowserVersionString(text); }),
              L"115.0.1901.183");
    EXPECT_EQ(environment->get_BrowserVersionString(nullptr), E_POINTER);
    EXPECT_EQ(FolderOf(environment), folder);
    EXPECT_NE(GetFileAttributesW(folder.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(EnvironmentTest, ReadsTheOptionsInsideTheCallAndKeepsNoReference) {
    FakeOptions options(L"de");
    environment = MakeEnvironment(folder, &options).environment;
    EXPECT_TRUE(environment);
    EXPECT_EQ(options.languageReads, 1);
    EXPECT_EQ(options.crashReportingReads, 1);
    EXPECT_EQ(options.references, 1U);
}

TEST_F(EnvironmentTest, WhatReadingTheOptionsFailsWithIsTheCallsAnswer) {
    FakeOptions options(L"de");
    options.languageResult = E_ACCESSDENIED;
    const auto handler = MakeHandler<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>(
        [](HRESULT, ICoreWebView2Environment*) { ADD_FAILURE() << "called"; });
    EXPECT_EQ(Runtime().createWithOptions(nullptr, folder.c_str(), &options, handler.Get()), E_ACCESSDENIED);
    PumpWaiting();
}

TEST_F(EnvironmentTest, ASecondOneOnTheFolderHasToAgreeOnTheOptions) {
    FakeOptions german(L"de");
    FakeOptions french(L"fr");
    environment = MakeEnvironment(folder, &german).environment;
    ASSERT_TRUE(environment);
    const auto refused = MakeEnvironment(folder, &french);
    EXPECT_EQ(refused.result, HRESULT_FROM_WIN32(ERROR_INVALID_STATE));
    EXPECT_FALSE(refused.environment);
    const auto agreeing = MakeEnvironment(folder, &german);
    EXPECT_EQ(agreeing.result, S_OK);
    EXPECT_TRUE(agreeing.environment);
}

TEST_F(EnvironmentTest, AFolderIsTheSameWithASeparatorAtItsEnd) {
    FakeOptions german(L"de");
    FakeOptions french(L"fr");
    environment = MakeEnvironment(folder, &german).environment;
    ASSERT_TRUE(environment);
    for (const wchar_t* separator : {L"\\", L"/"}) {
        EXPECT_EQ(MakeEnvironment(folder + separator, &french).result,
                  HRESULT_FROM_WIN32(ERROR_INVALID_STATE));
        const auto agreeing = MakeEnvironment(folder + separator, &german);
        ASSERT_TRUE(agreeing.environment) << std::hex << agreeing.result;
        EXPECT_EQ(FolderOf(agreeing.environment), folder);
    }
}

TEST_F(EnvironmentTest, AFolderThatIsInUseElsewhereFailsTheCompletion) {
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    HRESULT elsewhere = E_PENDING;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        elsewhere = MakeEnvironment(folder).result;
        CoUninitialize();
    }).join();
    EXPECT_EQ(elsewhere, HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
}

TEST_F(EnvironmentTest, AFailureIsTriedAgainWithTheCallersArgumentsAsTheyAreThen) {
    const std::wstring file = folder + L".txt";
    CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    std::wstring text = file; // no folder can be made there
    environment = Completed<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler,
                            ComPtr<ICoreWebView2Environment>>(
                      [&](auto* handler) {
                          const HRESULT called =
                              Runtime().createWithOptions(nullptr, text.c_str(), nullptr, handler);
                          text.resize(folder.size());
                          return called;
                      },
                      [](HRESULT, ICoreWebView2Environment* created) { return created; })
                      .value_or(nullptr);
    EXPECT_TRUE(environment);
    EXPECT_TRUE(DeleteFileW(file.c_str()));
}

TEST_F(EnvironmentTest, WithoutAFolderTheProfileIsBesideTheProgram) {
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    folder = program + L".WebView2";
    environment = Completed<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler,
                            ComPtr<ICoreWebView2Environment>>(
                      [](auto* handler) { return Runtime().create(handler); },
                      [](HRESULT, ICoreWebView2Environment* created) { return created; })
                      .value_or(nullptr);
    ASSERT_TRUE(environment);
    EXPECT_EQ(FolderOf(environment), folder);
    EXPECT_NE(GetFileAttributesW(folder.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(EnvironmentTest, TheStandardVariableGoesBeforeTheGivenFolder) {
    const test_support::ScopedVariable named(L"WEBVIEW2_USER_DATA_FOLDER", folder.c_str());
    environment = MakeEnvironment(L"overridden").environment;
    ASSERT_TRUE(environment);
    EXPECT_EQ(FolderOf(environment), folder);
}

TEST_F(EnvironmentTest, ACompletionThatNobodyWaitsForAnyMoreEndsChromium) {
    const auto result = Completed<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler, HRESULT>(
        [&](auto* handler) { return Runtime().createWithOptions(nullptr, folder.c_str(), nullptr, handler); },
        [](HRESULT code, ICoreWebView2Environment*) { return code; });
    EXPECT_EQ(result, S_OK);
}

TEST_F(EnvironmentTest, ADeadChromiumFailsTheNextControllerAndLetsTheFolderGo) {
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    KillChromium();
    const auto made = MakeController();
    EXPECT_EQ(made.result, E_FAIL);
    EXPECT_FALSE(made.controller);
    environment.Reset();
    environment = MakeEnvironment(folder).environment;
    EXPECT_TRUE(MakeController().controller);
}

TEST_F(EnvironmentTest, AnswersAllItsInterfacesAndNoOther) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    ComPtr<IUnknown> unknown;
    for (const IID& id : {__uuidof(ICoreWebView2Environment), __uuidof(ICoreWebView2Environment2),
                          __uuidof(ICoreWebView2Environment10), IID_IUnknown}) {
        EXPECT_EQ(environment.CopyTo(id, reinterpret_cast<void**>(unknown.ReleaseAndGetAddressOf())), S_OK);
        EXPECT_EQ(unknown.Get(), environment.Get());
    }
    EXPECT_EQ(environment.CopyTo(IID_IDispatch, reinterpret_cast<void**>(unknown.ReleaseAndGetAddressOf())),
              E_NOINTERFACE);
    EXPECT_FALSE(unknown);
}

TEST_F(EnvironmentTest, ControllerOptionsKeepModeAndProfile) {
    ShareChromium();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    ComPtr<ICoreWebView2Environment10> environment10;
    ComPtr<ICoreWebView2ControllerOptions> options;
    ASSERT_EQ(environment.As(&environment10), S_OK);
    ASSERT_EQ(environment10->CreateCoreWebView2ControllerOptions(&options), S_OK);
    EXPECT_EQ(environment10->CreateCoreWebView2ControllerOptions(nullptr), E_POINTER);
    BOOL inPrivate = TRUE;
    EXPECT_EQ(options->get_IsInPrivateModeEnabled(&inPrivate), S_OK);
    EXPECT_EQ(inPrivate, FALSE);
    EXPECT_EQ(options->put_IsInPrivateModeEnabled(TRUE), S_OK);
    EXPECT_EQ(options->get_IsInPrivateModeEnabled(&inPrivate), S_OK);
    EXPECT_EQ(inPrivate, TRUE);
    EXPECT_EQ(options->put_ProfileName(L"work profile"), S_OK);
    for (const wchar_t* refused : {L"", L"a/b", L"ends.", L"ends "}) {
        EXPECT_EQ(options->put_ProfileName(refused), E_INVALIDARG) << refused;
    }
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return options->get_ProfileName(text); }), L"work profile");
}

class RequestMakingTest : public RuntimeTest {
  protected:
    void SetUp() override {
        RuntimeTest::SetUp();
        ShareChromium();
        environment = MakeEnvironment(folder).environment;
        ASSERT_TRUE(environment);
        ASSERT_EQ(environment.As(&environment2), S_OK);
    }
    void TearDown() override {
        request.Reset();
        environment2.Reset();
        RuntimeTest::TearDown();
    }

    HRESULT Make(const wchar_t* uri, const wchar_t* method, const wchar_t* headers) {
        request.Reset();
        return environment2->CreateWebResourceRequest(uri, method, nullptr, headers, &request);
    }

    ComPtr<ICoreWebView2Environment2> environment2;
    ComPtr<ICoreWebView2WebResourceRequest> request;
};

TEST_F(RequestMakingTest, RefusesWhatIsNoRequest) {
    EXPECT_EQ(Make(L"relative/path", L"GET", nullptr), E_INVALIDARG);
    EXPECT_EQ(Make(L"", L"GET", nullptr), E_INVALIDARG);
    EXPECT_EQ(Make(L"http://host/", L"PUT", nullptr), E_INVALIDARG);
    EXPECT_EQ(Make(L"http://host/", L"GET", L"no colon"), E_INVALIDARG);
    EXPECT_EQ(Make(L"http://host/", L"GET", L": no name"), E_INVALIDARG);
    EXPECT_EQ(Make(nullptr, L"GET", nullptr), E_POINTER);
    EXPECT_FALSE(request);
    EXPECT_EQ(environment2->CreateWebResourceRequest(L"http://host/", L"GET", nullptr, nullptr, nullptr),
              E_POINTER);
    EXPECT_EQ(Make(L"http://host/", L"POST", nullptr), S_OK);
}

TEST_F(RequestMakingTest, ParsesHeaderLinesWithAndWithoutTheLastLineEnd) {
    for (const wchar_t* lines : {L"Accept: */*\r\nPragma:no-cache\r\n", L"Accept: */*\r\nPragma:no-cache"}) {
        ASSERT_EQ(Make(L"http://host/", L"GET", lines), S_OK);
        ComPtr<ICoreWebView2HttpRequestHeaders> headers;
        ASSERT_EQ(request->get_Headers(&headers), S_OK);
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return headers->GetHeader(L"accept", text); }), L"*/*");
        EXPECT_EQ(TextFrom([&](LPWSTR* text) { return headers->GetHeader(L"PRAGMA", text); }), L"no-cache");
    }
}

TEST_F(RequestMakingTest, HeadersAreSetRemovedAndListedInOrder) {
    ASSERT_EQ(Make(L"http://host/", L"GET", L"One: 1\r\nTwo: 2\r\none: 3"), S_OK);
    ComPtr<ICoreWebView2HttpRequestHeaders> headers;
    ASSERT_EQ(request->get_Headers(&headers), S_OK);
    EXPECT_EQ(TextFrom([&](LPWSTR* text) { return headers->GetHeader(L"One", text); }), L"1, 3");
    EXPECT_EQ(headers->SetHeader(L"ONE", L"new"), S_OK);
    EXPECT_EQ(headers->SetHeader(L"Three", L""), S_OK);
    EXPECT_EQ(headers->SetHeader(L"", L"x"), E_INVALIDARG);
    EXPECT_EQ(headers->RemoveHeader(L"two"), S_OK);
    EXPECT_EQ(headers->RemoveHeader(L"two"), E_INVALIDARG);
    BOOL contains = TRUE;
    EXPECT_EQ(headers->Contains(L"Two", &contains), S_OK);
    EXPECT_EQ(contains, FALSE);
    ComPtr<ICoreWebView2HttpHeadersCollectionIterator> iterator;
    ASSERT_EQ(headers->GetIterator(&iterator), S_OK);
    std::wstring listed;
    BOOL more = FALSE;
    ASSERT_EQ(iterator->get_HasCurrentHeader(&more), S_OK);
    while (more != FALSE) {
        LPWSTR name = nullptr;
        LPWSTR value = nullptr;
        ASSERT_EQ(iterator->GetCurrentHeader(&name, &value), S_OK);
        listed.append(name).append(L"=").append(value).append(L";");
        CoTaskMemFree(name);
        CoTaskMemFree(value);
        ASSERT_EQ(iterator->MoveNext(&more), S_OK);
    }
    EXPECT_EQ(listed, L"One=new;Three=;");
    LPWSTR none = nullptr;
    EXPECT_EQ(iterator->GetCurrentHeader(&none, &none), E_INVALIDARG);
    EXPECT_EQ(headers->GetHeader(L"Two", &none), E_INVALIDARG);
}

} // namespace
} // namespace webview2_runtime_test
