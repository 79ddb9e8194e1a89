// A thread reads the lines and posts them to a window, so that any message loop of the host's thread brings them.
#include "tests/e2e/command_input.h"

#include <cstdio>
#include <iostream>
#include <memory>
#include <thread>
#include <utility>

#include <windows.h>

namespace e2e {
namespace {

using Obey = std::function<std::string(const std::string&)>;

constexpr UINT kCommandMessage = WM_APP + 1;

/// Takes ownership of the line.
void Post(HWND window, std::string line) {
    PostMessageW(window, kCommandMessage, 0, reinterpret_cast<LPARAM>(new std::string(std::move(line))));
}

void Read(HWND window) {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        Post(window, line);
    }
    Post(window, "quit");
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kCommandMessage) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const std::unique_ptr<std::string> line(reinterpret_cast<std::string*>(lParam));
    if (*line == "quit") {
        PostQuitMessage(0);
    } else if (*line == "die") {
        TerminateProcess(GetCurrentProcess(), 1);
    } else {
        const auto* const obey = reinterpret_cast<const Obey*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        Say((*obey)(*line));
    }
    return 0;
}

} // namespace

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void RunCommands(const Obey& obey) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"CommandInput";
    RegisterClassW(&windowClass);
    HWND window = CreateWindowExW(0, windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  windowClass.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&obey));
    std::thread(&Read, window).detach();
    Say("ready");
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    DestroyWindow(window);
}

} // namespace e2e
