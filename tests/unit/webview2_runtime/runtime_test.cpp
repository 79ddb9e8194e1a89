// A creation that never completes fails its test at the deadline.
#include "tests/unit/webview2_runtime/runtime_test.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
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
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / (L"kelda-runtime-" + std::to_wstring(GetCurrentProcessId()) +
                                                  L"-" + std::to_wstring(GetTickCount64()));
    return folder.native();
}

/// Empty for a process that has gone meanwhile.
std::string CommandLineOf(const std::filesystem::path& process) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(_wfopen((process / L"cmdline").c_str(), L"rb"), &fclose);
    std::string text(file ? 65536 : 0, '\0');
    text.resize(file ? fread(text.data(), 1, text.size(), file.get()) : 0);
    return text;
}

/// Starts a program of the machine below Wine, and does not wait for it.
void StartNative(const std::wstring& name, const std::wstring& arguments) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION ignored{};
    const std::wstring program = L"\\\\?\\unix\\usr\\bin\\" + name;
    std::wstring line = name + L" " + arguments;
    EXPECT_NE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             &startup, &ignored),
              FALSE);
}

/// Natively: a Chromium that was killed leaves links that removing through Wine does not come to an end with.
void RemoveProfile(const std::wstring& folder) {
    using GetNativeName = char*(CDECL*)(LPCWSTR name);
    GetNativeName getNativeName = nullptr;
    LookUp(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name", getNativeName);
    char* name = getNativeName(folder.c_str());
    if (name != nullptr) {
        const std::string native = name;
        HeapFree(GetProcessHeap(), 0, name);
        StartNative(L"rm", L"-rf \"" + std::wstring(native.begin(), native.end()) + L"\"");
    }
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

void PumpWaiting() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool PumpUntil(const std::function<bool()>& condition) {
    const ULONGLONG end = GetTickCount64() + kDeadline;
    for (;;) {
        PumpWaiting();
        if (condition()) {
            return true;
        }
        const ULONGLONG now = GetTickCount64();
        if (now >= end) {
            return false;
        }
        // Short, as the condition may be about something that posts no message here.
        constexpr DWORD kLongestWait = 20;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kLongestWait, QS_ALLINPUT);
    }
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

std::vector<int> ChromiumProcesses(const std::wstring& folder) {
    const std::string name = std::filesystem::path(folder).filename().string();
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator(L"\\\\?\\unix\\proc")) {
        const std::string text = entry.path().filename().string();
        int process = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), process).ec != std::errc()) {
            continue;
        }
        const std::string command = CommandLineOf(entry.path());
        if (command.find("--user-data-dir=") != std::string::npos &&
            command.find(name) != std::string::npos) {
            found.push_back(process);
        }
    }
    return found;
}

void KillNative(int process) {
    StartNative(L"perl", L"-e \"kill 9, " + std::to_wstring(process) + L"\"");
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
    EXPECT_EQ(Runtime().objectCount(), 0U);
    EXPECT_EQ(liveHandlers, 0);
    EXPECT_TRUE(PumpUntil([&] { return ChromiumProcesses(folder).empty(); }));
    if (IsWindow(parent) != FALSE) {
        DestroyWindow(parent);
    }
    CoUninitialize();
    RemoveProfile(folder);
}

void RuntimeTest::ReleaseAll() {
    view.Reset();
    controller.Reset();
    environment.Reset();
}

RuntimeTest::MadeEnvironment RuntimeTest::MakeEnvironment(const std::wstring& userDataFolder,
                                                          ICoreWebView2EnvironmentOptions* options,
                                                          const wchar_t* browserFolder) {
    MadeEnvironment made;
    int calls = 0;
    const auto handler = MakeHandler<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>(
        [&](HRESULT result, ICoreWebView2Environment* created) {
            made.result = result;
            made.environment = created;
            ++calls;
        });
    const HRESULT started =
        Runtime().createWithOptions(browserFolder, userDataFolder.c_str(), options, handler.Get());
    EXPECT_EQ(started, S_OK);
    EXPECT_EQ(calls, 0) << "completed inside the call";
    EXPECT_TRUE(FAILED(started) || PumpUntil([&] { return calls != 0; }));
    EXPECT_EQ(calls, 1);
    return made;
}

RuntimeTest::MadeController RuntimeTest::MakeController(bool inPrivate) {
    MadeController made;
    ComPtr<ICoreWebView2Environment10> environment10;
    ComPtr<ICoreWebView2ControllerOptions> options;
    EXPECT_EQ(environment.As(&environment10), S_OK);
    EXPECT_EQ(environment10->CreateCoreWebView2ControllerOptions(&options), S_OK);
    EXPECT_EQ(options->put_IsInPrivateModeEnabled(inPrivate ? TRUE : FALSE), S_OK);
    int calls = 0;
    const auto handler = MakeHandler<ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>(
        [&](HRESULT result, ICoreWebView2Controller* created) {
            made.result = result;
            made.controller = created;
            ++calls;
        });
    EXPECT_EQ(environment10->CreateCoreWebView2ControllerWithOptions(parent, options.Get(), handler.Get()),
              S_OK);
    EXPECT_EQ(calls, 0) << "completed inside the call";
    EXPECT_TRUE(PumpUntil([&] { return calls != 0; }));
    EXPECT_EQ(calls, 1);
    return made;
}

void WebViewTest::SetUp() {
    RuntimeTest::SetUp();
    environment = MakeEnvironment(folder).environment;
    ASSERT_TRUE(environment);
    controller = MakeController().controller;
    ASSERT_TRUE(controller);
    ComPtr<ICoreWebView2> first;
    ASSERT_EQ(controller->get_CoreWebView2(&first), S_OK);
    ASSERT_EQ(first.As(&view), S_OK);
}

void WebViewTest::TearDown() {
    if (controller) {
        controller->Close();
    }
    RuntimeTest::TearDown();
}

std::optional<Completion> WebViewTest::CompletionAfter(const std::function<void()>& start) {
    std::optional<Completion> completion;
    EventRegistrationToken token{};
    const auto handler = MakeHandler<ICoreWebView2NavigationCompletedEventHandler>(
        [&](ICoreWebView2*, ICoreWebView2NavigationCompletedEventArgs* arguments) {
            BOOL succeeded = FALSE;
            COREWEBVIEW2_WEB_ERROR_STATUS status{};
            UINT64 id = 0;
            EXPECT_EQ(arguments->get_IsSuccess(&succeeded), S_OK);
            EXPECT_EQ(arguments->get_WebErrorStatus(&status), S_OK);
            EXPECT_EQ(arguments->get_NavigationId(&id), S_OK);
            completion = Completion{succeeded != FALSE, status, id};
        });
    EXPECT_EQ(view->add_NavigationCompleted(handler.Get(), &token), S_OK);
    start();
    EXPECT_TRUE(PumpUntil([&] { return completion.has_value(); }));
    EXPECT_EQ(view->remove_NavigationCompleted(token), S_OK);
    return completion;
}

std::optional<Completion> WebViewTest::Load(const std::wstring& url) {
    return CompletionAfter([&] { EXPECT_EQ(view->Navigate(url.c_str()), S_OK); });
}

std::wstring WebViewTest::Run(const std::wstring& script) {
    std::optional<std::wstring> answer;
    const auto handler =
        MakeHandler<ICoreWebView2ExecuteScriptCompletedHandler>([&](HRESULT result, LPCWSTR json) {
            EXPECT_EQ(result, S_OK);
            answer = json;
        });
    EXPECT_EQ(view->ExecuteScript(script.c_str(), handler.Get()), S_OK);
    EXPECT_FALSE(answer) << "completed inside the call";
    EXPECT_TRUE(PumpUntil([&] { return answer.has_value(); }));
    return answer.value_or(L"(no answer)");
}

std::wstring WebViewTest::AddDocumentScript(const std::wstring& script) {
    std::optional<std::wstring> id;
    const auto handler = MakeHandler<ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler>(
        [&](HRESULT result, LPCWSTR text) {
            EXPECT_EQ(result, S_OK);
            id = text;
        });
    EXPECT_EQ(view->AddScriptToExecuteOnDocumentCreated(script.c_str(), handler.Get()), S_OK);
    EXPECT_FALSE(id) << "completed inside the call";
    EXPECT_TRUE(PumpUntil([&] { return id.has_value(); }));
    return id.value_or(L"");
}

EventRegistrationToken
WebViewTest::OnStarting(std::function<void(ICoreWebView2NavigationStartingEventArgs*)> handler) const {
    EventRegistrationToken token{};
    EXPECT_EQ(
        view->add_NavigationStarting(
            MakeHandler<ICoreWebView2NavigationStartingEventHandler>([handler = std::move(handler)](
                                                                         ICoreWebView2*, auto* arguments) {
                handler(arguments);
            }).Get(),
            &token),
        S_OK);
    return token;
}

EventRegistrationToken
WebViewTest::OnRequested(std::function<void(ICoreWebView2WebResourceRequestedEventArgs*)> handler) const {
    EventRegistrationToken token{};
    EXPECT_EQ(
        view->add_WebResourceRequested(
            MakeHandler<ICoreWebView2WebResourceRequestedEventHandler>([handler = std::move(handler)](
                                                                           ICoreWebView2*, auto* arguments) {
                handler(arguments);
            }).Get(),
            &token),
        S_OK);
    return token;
}

} // namespace webview2_runtime_test
