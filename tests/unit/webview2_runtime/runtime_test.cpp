// A creation that never completes fails its test at the deadline.
#include "tests/unit/webview2_runtime/runtime_test.h"

#include <filesystem>
#include <utility>

#include <objbase.h>

namespace webview2_runtime_test {
namespace {

template <typename Function>
void LookUp(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    EXPECT_NE(function, nullptr) << name;
}

std::wstring UniqueFolder() {
    static int count = 0;
    const std::wstring name = L"kelda-runtime-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    return (std::filesystem::temp_directory_path() / name).native();
}

std::string MarkOf(const std::wstring& folder) {
    return std::filesystem::path(folder).filename().string();
}

/// Keeps a Chromium by an environment that no case sees.
class SharedChromium final : public testing::Environment {
  public:
    /// Opens the environment, unless its Chromium still runs. Needs a single-threaded apartment.
    void Open() {
        if (environment_ && test_support::NativeState(process_) != '?') {
            return;
        }
        End();
        folder_ = UniqueFolder();
        environment_ = Completed<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler,
                                 ComPtr<ICoreWebView2Environment>>(
                           [this](auto* handler) {
                               return Runtime().createWithOptions(nullptr, folder_.c_str(), nullptr, handler);
                           },
                           [](HRESULT, ICoreWebView2Environment* created) { return created; })
                           .value_or(nullptr);
        process_ = test_support::NativeChromium(MarkOf(folder_));
    }
    /// Ends Chromium; nothing of it may be left.
    void End() {
        environment_.Reset();
        if (!folder_.empty()) {
            EXPECT_EQ(LiveObjects(), 0U);
            EXPECT_TRUE(PumpUntil([this] { return test_support::NativeProcesses(MarkOf(folder_)).empty(); }));
            test_support::RemoveNatively(std::exchange(folder_, {}));
        }
    }
    void TearDown() override { End(); }

    const std::wstring& Folder() const { return folder_; }
    DWORD Objects() const { return environment_ ? 1 : 0; }

  private:
    std::wstring folder_; // empty while there is no Chromium
    ComPtr<ICoreWebView2Environment> environment_;
    int process_ = 0;
};

// GoogleTest takes ownership.
auto* sharedChromium = static_cast<SharedChromium*>(testing::AddGlobalTestEnvironment(new SharedChromium));

/// Adds a handler of an event, made of a function that gets the event's arguments.
template <typename Handler, typename Add, typename Function>
EventRegistrationToken AddHandler(ICoreWebView2_15* view, Add add, Function function) {
    EventRegistrationToken token{};
    const auto handler = MakeHandler<Handler>(
        [function = std::move(function)](ICoreWebView2*, auto* arguments) { function(arguments); });
    EXPECT_EQ((view->*add)(handler.Get(), &token), S_OK);
    return token;
}

} // namespace

Loader::Loader() {
    const HMODULE module = LoadLibraryW(L"WebView2Loader.dll");
    EXPECT_NE(module, nullptr) << GetLastError();
    LookUp(module, "GetAvailableCoreWebView2BrowserVersionString", getVersion);
    LookUp(module, "CreateCoreWebView2EnvironmentWithOptions", createWithOptions);
    LookUp(module, "CreateCoreWebView2Environment", create);
    LookUp(module, "CompareBrowserVersions", compareVersions);
    LookUp(module, "KeldaTestRuntimeObjectCount", objectCount);
}

const Loader& Runtime() {
    static const Loader loader;
    return loader;
}

DWORD LiveObjects() {
    return Runtime().objectCount() - sharedChromium->Objects();
}

std::wstring TextFrom(const std::function<HRESULT(LPWSTR*)>& getter) {
    LPWSTR text = nullptr;
    const HRESULT result = getter(&text);
    EXPECT_EQ(result, S_OK);
    if (FAILED(result) || text == nullptr) {
        return L"(nothing)";
    }
    std::wstring copy = text;
    CoTaskMemFree(text);
    return copy;
}

void RuntimeTest::SetUp() {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    folder = UniqueFolder();
    parent = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 500, 400, nullptr,
                             nullptr, nullptr, nullptr);
    ASSERT_NE(parent, nullptr);
}

void RuntimeTest::TearDown() {
    ReleaseAll();
    EXPECT_EQ(LiveObjects(), 0U);
    EXPECT_EQ(liveHandlers, 0);
    if (!shares_) {
        EXPECT_TRUE(PumpUntil([&] { return test_support::NativeProcesses(Mark()).empty(); }));
        test_support::RemoveNatively(folder);
    }
    if (IsWindow(parent) != FALSE) {
        DestroyWindow(parent);
    }
    CoUninitialize();
}

std::string RuntimeTest::Mark() const {
    return MarkOf(folder);
}

void RuntimeTest::ShareChromium() {
    sharedChromium->Open();
    folder = sharedChromium->Folder();
    shares_ = true;
}

void RuntimeTest::UseFolderOfItsOwn() {
    folder = UniqueFolder();
    shares_ = false;
}

void RuntimeTest::KillChromium() const {
    ASSERT_FALSE(shares_);
    const int process = test_support::NativeChromium(Mark());
    ASSERT_NE(process, 0);
    test_support::KillNative(process);
    EXPECT_TRUE(PumpUntil([&] { return test_support::NativeChromium(Mark()) == 0; }));
}

void RuntimeTest::ReleaseAll() {
    view.Reset();
    controller.Reset();
    environment.Reset();
}

RuntimeTest::MadeEnvironment RuntimeTest::MakeEnvironment(const std::wstring& userDataFolder,
                                                          ICoreWebView2EnvironmentOptions* options,
                                                          const wchar_t* browserFolder) {
    const auto made = Completed<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler, MadeEnvironment>(
        [&](auto* handler) {
            return Runtime().createWithOptions(browserFolder, userDataFolder.c_str(), options, handler);
        },
        [](HRESULT result, ICoreWebView2Environment* created) {
            return MadeEnvironment{result, created};
        });
    return made.value_or(MadeEnvironment());
}

RuntimeTest::MadeController RuntimeTest::MakeController(bool inPrivate) {
    ComPtr<ICoreWebView2Environment10> environment10;
    ComPtr<ICoreWebView2ControllerOptions> options;
    EXPECT_EQ(environment.As(&environment10), S_OK);
    EXPECT_EQ(environment10->CreateCoreWebView2ControllerOptions(&options), S_OK);
    EXPECT_EQ(options->put_IsInPrivateModeEnabled(inPrivate ? TRUE : FALSE), S_OK);
    const auto made = Completed<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler, MadeController>(
        [&](auto* handler) {
            return environment10->CreateCoreWebView2ControllerWithOptions(parent, options.Get(), handler);
        },
        [](HRESULT result, ICoreWebView2Controller* created) {
            return MadeController{result, created};
        });
    return made.value_or(MadeController());
}

void WebViewTest::SetUp() {
    RuntimeTest::SetUp();
    ShareChromium();
    ASSERT_NO_FATAL_FAILURE(MakeWebView());
    DeleteCookies();
}

void WebViewTest::MakeWebView() {
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    controller = MakeController().controller;
    ASSERT_TRUE(controller);
    ComPtr<ICoreWebView2> first;
    ASSERT_EQ(controller->get_CoreWebView2(&first), S_OK);
    ASSERT_EQ(first.As(&view), S_OK);
}

void WebViewTest::UseChromiumOfItsOwn() {
    EXPECT_EQ(controller->Close(), S_OK);
    ReleaseAll();
    UseFolderOfItsOwn();
    MakeWebView();
}

/// The case before may have left some.
void WebViewTest::DeleteCookies() const {
    ComPtr<ICoreWebView2CookieManager> manager;
    ASSERT_EQ(view->get_CookieManager(&manager), S_OK);
    EXPECT_EQ(manager->DeleteAllCookies(), S_OK);
    EXPECT_TRUE(PumpUntil([&] {
        return Completed<ICoreWebView2GetCookiesCompletedHandler, UINT32>(
                   [&](auto* handler) { return manager->GetCookies(nullptr, handler); },
                   [](HRESULT, ICoreWebView2CookieList* list) {
                       UINT32 count = 1;
                       if (list != nullptr) {
                           list->get_Count(&count);
                       }
                       return count;
                   }) == 0U;
    }));
}

void WebViewTest::TearDown() {
    if (controller) {
        controller->Close();
    }
    RuntimeTest::TearDown();
}

std::optional<Completion> WebViewTest::CompletionAfter(const std::function<void()>& start) {
    std::optional<Completion> completion;
    const EventRegistrationToken token = AddHandler<ICoreWebView2NavigationCompletedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_NavigationCompleted,
        [&](ICoreWebView2NavigationCompletedEventArgs* arguments) {
            BOOL succeeded = FALSE;
            COREWEBVIEW2_WEB_ERROR_STATUS status{};
            UINT64 id = 0;
            EXPECT_EQ(arguments->get_IsSuccess(&succeeded), S_OK);
            EXPECT_EQ(arguments->get_WebErrorStatus(&status), S_OK);
            EXPECT_EQ(arguments->get_NavigationId(&id), S_OK);
            completion = Completion{succeeded != FALSE, status, id};
        });
    start();
    EXPECT_TRUE(PumpUntil([&] { return completion.has_value(); }));
    EXPECT_EQ(view->remove_NavigationCompleted(token), S_OK);
    return completion;
}

std::optional<Completion> WebViewTest::Load(const std::wstring& url) {
    return CompletionAfter([&] { EXPECT_EQ(view->Navigate(url.c_str()), S_OK); });
}

std::wstring WebViewTest::Run(const std::wstring& script) {
    const auto answer = Completed<ICoreWebView2ExecuteScriptCompletedHandler, std::wstring>(
        [&](auto* handler) { return view->ExecuteScript(script.c_str(), handler); },
        [](HRESULT result, LPCWSTR json) {
            EXPECT_EQ(result, S_OK);
            return json == nullptr ? L"(null)" : json;
        });
    return answer.value_or(L"(no answer)");
}

std::wstring WebViewTest::AddDocumentScript(const std::wstring& script) {
    const auto id = Completed<ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler, std::wstring>(
        [&](auto* handler) { return view->AddScriptToExecuteOnDocumentCreated(script.c_str(), handler); },
        [](HRESULT result, LPCWSTR text) {
            EXPECT_EQ(result, S_OK);
            return text == nullptr ? L"" : text;
        });
    return id.value_or(L"");
}

EventRegistrationToken
WebViewTest::OnStarting(std::function<void(ICoreWebView2NavigationStartingEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2NavigationStartingEventHandler>(
        view.Get(), &ICoreWebView2_15::add_NavigationStarting, std::move(handler));
}

EventRegistrationToken
WebViewTest::OnRequested(std::function<void(ICoreWebView2WebResourceRequestedEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2WebResourceRequestedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_WebResourceRequested, std::move(handler));
}

EventRegistrationToken WebViewTest::OnResponse(
    std::function<void(ICoreWebView2WebResourceResponseReceivedEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2WebResourceResponseReceivedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_WebResourceResponseReceived, std::move(handler));
}

EventRegistrationToken WebViewTest::OnChallenge(
    std::function<void(ICoreWebView2BasicAuthenticationRequestedEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2BasicAuthenticationRequestedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_BasicAuthenticationRequested, std::move(handler));
}

EventRegistrationToken WebViewTest::OnCertificateError(
    std::function<void(ICoreWebView2ServerCertificateErrorDetectedEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2ServerCertificateErrorDetectedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_ServerCertificateErrorDetected, std::move(handler));
}

EventRegistrationToken WebViewTest::OnClientCertificate(
    std::function<void(ICoreWebView2ClientCertificateRequestedEventArgs*)> handler) const {
    return AddHandler<ICoreWebView2ClientCertificateRequestedEventHandler>(
        view.Get(), &ICoreWebView2_15::add_ClientCertificateRequested, std::move(handler));
}

} // namespace webview2_runtime_test
