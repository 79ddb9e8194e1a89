// A host with a browser of the library's in a child window. It does what it is told on its standard input, a command a line,
// and answers each but the last two with a line; what the browser reports comes as "event" lines in between.
//
//   create             a browser by the factory, with COM initialised, in the child window
//   resize W H         the child window, and the browser in it
//   close, release     Destroy; letting go of the browser
//   close-release      both, with no message loop in between
//   counts             handles, windows, and objects of the test runtime
//   area               the child window on the screen: left, top, width, height
//   read NAME          a variable of the environment, as the host's library reads it
//   die                ends like a crash
//   quit
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include <windows.h>

#include "dp/environment.h"
#include "du/string_utilities.h"
#include "host_reference/tracing.h"
#include "kelda/kelda.h"
#include "tests/e2e/process_counts.h"

namespace {

constexpr UINT kCommandMessage = WM_APP + 1;

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

class Owner final : public kelda::ZanWebBrowser::Callback {
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
        if (command == "create") {
            return Create();
        }
        if (command == "resize") {
            int width = 0;
            int height = 0;
            words >> width >> height;
            SetWindowPos(area_, nullptr, 20, 10, width, height, SWP_NOZORDER);
            browser_->Resize();
            return "ok";
        }
        if (command == "close") {
            browser_->Destroy();
            return "ok";
        }
        if (command == "release") {
            browser_.reset();
            return "ok";
        }
        if (command == "close-release") {
            browser_->Destroy();
            browser_.reset();
            return "ok";
        }
        if (command == "counts") {
            return Counts();
        }
        if (command == "area") {
            RECT area{};
            GetWindowRect(area_, &area);
            return std::to_string(area.left) + " " + std::to_string(area.top) + " " +
                   std::to_string(area.right - area.left) + " " + std::to_string(area.bottom - area.top);
        }
        if (command == "read") {
            std::string name;
            words >> name;
            return "value " + dp::Environment::Get(name.c_str());
        }
        return "no such command";
    }

  private:
    std::string Create() {
        browser_ = kelda::ZanWebBrowser::Factory(server_.c_str(), checkMode_);
        browser_->InitializeCom();
        browser_->Create(&owner_, area_);
        return dynamic_cast<kelda::ZanWebBrowserEdge*>(browser_.get()) != nullptr ? "webview2" : "legacy";
    }

    /// -1 objects where the test runtime has never been loaded.
    static std::string Counts() {
        int objects = -1;
        const HMODULE runtime = GetModuleHandleW(L"WebView2Loader.dll");
        if (runtime != nullptr) {
            using Count = DWORD(STDAPICALLTYPE*)();
            const auto count = reinterpret_cast<Count>(
                reinterpret_cast<void*>(GetProcAddress(runtime, "KeldaTestRuntimeObjectCount")));
            objects = count != nullptr ? static_cast<int>(count()) : -1;
        }
        return std::to_string(e2e::CountHandles()) + " " + std::to_string(e2e::CountWindows()) + " " +
               std::to_string(objects);
    }

    std::string server_;
    int checkMode_;
    HWND window_ = nullptr;
    HWND area_ = nullptr;
    Owner owner_;
    std::shared_ptr<kelda::ZanWebBrowser> browser_;
};

/// Passes the lines of the standard input to the thread that runs the host; its end is a "quit".
void ReadCommands(DWORD hostThread) {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        PostThreadMessageW(hostThread, kCommandMessage, 0,
                           reinterpret_cast<LPARAM>(new std::string(line))); // owned by the receiver
    }
    PostThreadMessageW(hostThread, kCommandMessage, 0, reinterpret_cast<LPARAM>(new std::string("quit")));
}

void Run(Host& host) {
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.hwnd == nullptr && message.message == kCommandMessage) {
            const std::unique_ptr<std::string> line(reinterpret_cast<std::string*>(message.lParam));
            if (*line == "quit") {
                return;
            }
            if (*line == "die") {
                TerminateProcess(GetCurrentProcess(), 1);
            }
            Say(host.Obey(*line));
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 4 || !host_reference::SetTraceFile(argv[3])) {
        std::fprintf(stderr, "usage: browser_host SERVER CHECK_MODE TRACE_FILE\n");
        return 2;
    }
    MSG message{};
    PeekMessageW(&message, nullptr, WM_USER, WM_USER,
                 PM_NOREMOVE); // the queue has to be there before the reader
    {
        Host host(du::WideStrToUtf8(argv[1]), std::stoi(argv[2]));
        std::thread(&ReadCommands, GetCurrentThreadId()).detach();
        Say("ready");
        Run(host);
    }
    ExitProcess(0); // the reader may still wait for input
}
