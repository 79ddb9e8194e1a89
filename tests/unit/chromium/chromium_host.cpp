// Another process with a browser: opens the folder of its first argument, sets the event of its second when it is open, and
// goes on until it is ended.
#include <memory>
#include <utility>

#include "testbed/chromium/browser.h"

int wmain(int count, wchar_t** arguments) {
    if (count != 3) {
        return 1;
    }
    std::shared_ptr<testbed::chromium::Browser> kept;
    testbed::chromium::Browser::Open(arguments[1], {}, [&](auto browser, DWORD error) {
        kept = std::move(browser);
        HANDLE opened = OpenEventW(EVENT_MODIFY_STATE, FALSE, arguments[2]);
        if (error == ERROR_SUCCESS) {
            SetEvent(opened);
        }
        CloseHandle(opened);
    });
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
    return 0;
}
