// A host with a browser of the library's in a child window. It does what it is told on its standard input, a command a line,
// also while the library runs a dialog, and answers each but the last two with a line; what happens by itself comes as
// "event" lines in between.
//
//   create             a browser by the factory, with COM initialised, in the child window
//   resize W H         the child window, and the browser in it
//   close, release     Destroy; letting go of the browser
//   close-release      both, with no message loop in between
//   login              AuthenticateServer; its result comes as an event
//   owner              the owner window of the login: enabled or disabled, active or inactive
//   get PATH           a download from the server: how many bytes, or what went wrong
//   counts             handles, windows, GDI objects, and objects of the browser
//   area               the child window on the screen: left, top, width, height
//   read NAME          a variable of the environment, as the host's library reads it
//   legacy-control     COM, and the WebBrowser control of the testbed
//   die                ends like a crash
//   quit
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include <windows.h>

#include <objbase.h>

#include "dp/environment.h"
#include "du/string_utilities.h"
#include "host_reference/device.h"
#include "host_reference/tracing.h"
#include "kelda/kelda.h"
#include "testbed/legacy_control/legacy_control.h"
#include "testbed/viewer/download.h"
#include "testbed/windows_gaps/windows_gaps.h"
#include "tests/e2e/command_input.h"
#include "tests/support/process_counts.h"

namespace {

using e2e::Say;

constexpr const char* kOwnerDevice = "browser_host";

class Listener final : public kelda::ZanWebBrowser::Callback {
  public:
    void OnNavigationCompleted() override { Say("event completed"); }
    void OnSessionAuthenticated() override { Say("event authenticated"); }
    void OnSessionAuthenticatedFailed() override { Say("event failed"); }
};

/// The host's window with the browser's place in it, and the browser.
class Host {
  public:
    Host(std::string server, int checkMode) : server_(std::move(server)), checkMode_(checkMode) {
        const HINSTANCE instance = GetModuleHandleW(nullptr);
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &DefWindowProcW;
        windowClass.hInstance = instance;
        windowClass.lpszClassName = L"BrowserHost";
        windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        RegisterClassW(&windowClass);
        window_ =
            CreateWindowExW(0, windowClass.lpszClassName, L"host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN,
                            40, 30, 900, 700, nullptr, nullptr, instance, nullptr);
        area_ = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 20, 10, 640, 480,
                                window_, nullptr, instance, nullptr);
    }
    ~Host() { DestroyWindow(window_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// @return what to answer.
    std::string Obey(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        const auto found = commands_.find(command);
        return found == commands_.end() ? "no such command" : found->second(words);
    }

  private:
    std::string Create() {
        browser_ = kelda::ZanWebBrowser::Factory(server_.c_str(), checkMode_);
        browser_->InitializeCom();
        browser_->Create(&listener_, area_);
        return dynamic_cast<kelda::ZanWebBrowserEdge*>(browser_.get()) != nullptr ? "webview2" : "legacy";
    }

    std::string Resize(std::istream& words) {
        int width = 0;
        int height = 0;
        words >> width >> height;
        SetWindowPos(area_, nullptr, 20, 10, width, height, SWP_NOZORDER);
        browser_->Resize();
        return "ok";
    }

    std::string Close() {
        browser_->Destroy();
        return "ok";
    }

    std::string Release() {
        browser_.reset();
        return "ok";
    }

    /// Runs the dialog's message loop, from which further commands come.
    std::string Login() {
        host_reference::CreateOwnerDevice(kOwnerDevice, L"owner"); // the first time
        Say("ok");
        const bool loggedIn =
            kelda::AuthenticateServer(L"Log in", L"Host", kOwnerDevice, server_.c_str(), nullptr);
        return loggedIn ? "event login true" : "event login false";
    }

    static std::string Owner() {
        HWND owner = nullptr;
        ui_do_operation(kOwnerDevice, kOwnerDevice, kUiOperationGetNativeWindow, 0,
                        static_cast<void*>(&owner), 0);
        return std::string(IsWindowEnabled(owner) != FALSE ? "enabled" : "disabled") +
               (GetActiveWindow() == owner ? " active" : " inactive");
    }

    std::string Download(std::istream& words) const {
        std::string path;
        words >> path;
        std::wstring folder(MAX_PATH, L'\0');
        folder.resize(GetTempPathW(MAX_PATH, folder.data()));
        const std::wstring file = folder + L"browser_host_" + std::to_wstring(GetCurrentProcessId());
        const viewer::DownloadResult result = viewer::Download(server_ + path, file);
        DeleteFileW(file.c_str());
        return result.outcome == viewer::DownloadOutcome::Done ? std::to_string(result.bytes) + " bytes"
                                                               : result.reason;
    }

    std::string Area() const {
        RECT area{};
        GetWindowRect(area_, &area);
        return std::to_string(area.left) + " " + std::to_string(area.top) + " " +
               std::to_string(area.right - area.left) + " " + std::to_string(area.bottom - area.top);
    }

    static std::string Read(std::istream& words) {
        std::string name;
        words >> name;
        return "value " + dp::Environment::Get(name.c_str());
    }

    static std::string UseLegacyControl() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        return SupplyLegacyControl() ? "ok" : "no control";
    }

    /// Objects are those of the test runtime, once it has been loaded, and of the legacy control.
    static std::string Counts() {
        auto objects = static_cast<int>(LegacyControlLiveObjects());
        const HMODULE runtime = GetModuleHandleW(L"WebView2Loader.dll");
        if (runtime != nullptr) {
            using Count = DWORD(STDAPICALLTYPE*)();
            const auto count = reinterpret_cast<Count>(
                reinterpret_cast<void*>(GetProcAddress(runtime, "KeldaTestRuntimeObjectCount")));
            objects += count != nullptr ? static_cast<int>(count()) : 0;
        }
        return std::to_string(test_support::CountHandles()) + " " +
               std::to_string(test_support::CountWindows()) + " " +
               std::to_string(test_support::CountGdiObjects()) + " " + std::to_string(objects);
    }

    std::string server_;
    int checkMode_;
    HWND window_ = nullptr;
    HWND area_ = nullptr;
    Listener listener_;
    std::shared_ptr<kelda::ZanWebBrowser> browser_;

    using Command = std::function<std::string(std::istream&)>;
    const std::map<std::string, Command> commands_ = {
        {"create", [this](std::istream&) { return Create(); }},
        {"resize", [this](std::istream& words) { return Resize(words); }},
        {"close", [this](std::istream&) { return Close(); }},
        {"release", [this](std::istream&) { return Release(); }},
        {"close-release", [this](std::istream&) { return Close(), Release(); }},
        {"login", [this](std::istream&) { return Login(); }},
        {"owner", [](std::istream&) { return Owner(); }},
        {"get", [this](std::istream& words) { return Download(words); }},
        {"counts", [](std::istream&) { return Counts(); }},
        {"area", [this](std::istream&) { return Area(); }},
        {"legacy-control", [](std::istream&) { return UseLegacyControl(); }},
        {"read", [](std::istream& words) { return Read(words); }},
    };
};

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 4 || !host_reference::SetTraceFile(argv[3])) {
        std::fprintf(stderr, "usage: browser_host SERVER CHECK_MODE TRACE_FILE\n");
        return 2;
    }
    SupplyWindowsGaps(GetModuleHandleW(L"kelda.dll"));
    {
        Host host(du::WideStrToUtf8(argv[1]), std::stoi(argv[2]));
        e2e::RunCommands([&](const std::string& line) { return host.Obey(line); });
    }
    ExitProcess(0); // the reader may still wait for input
}
