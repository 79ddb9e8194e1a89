// The hook sees each message as it is taken out of the queue.
#include "browser_ie/keyboard_hook.h"

#include <algorithm>
#include <array>

#include "support/com_call.h"
#include "support/trace.h"

using Microsoft::WRL::ComPtr;

namespace kelda {
namespace {

constexpr std::array<WPARAM, 9> kServedKeys = {VK_TAB,    VK_CONTROL, VK_UP, VK_DOWN, VK_SELECT,
                                               VK_DELETE, 'C',        'V',   'Z'};

HHOOK hook = nullptr;
KeyTarget* served = nullptr;

/// A timer may have the number of a key.
bool IsServedKey(const MSG& message) {
    return message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST &&
           std::ranges::find(kServedKeys, message.wParam) != kServedKeys.end();
}

/// The control may let its owner destroy it meanwhile.
void HandOver(MSG& message) {
    const ComPtr<IOleInPlaceActiveObject> control = served->ActiveObject();
    const bool tab = message.wParam == VK_TAB;
    CallOn(control, &IOleInPlaceActiveObject::TranslateAccelerator, &message);
    if (control && tab) {
        message = {}; // the host's own loop would move the focus out of the page
    }
}

LRESULT CALLBACK OnMessageTaken(int code, WPARAM removal, LPARAM message) noexcept {
    // The system may pass other flags of PeekMessage along.
    if (code >= 0 && (removal & PM_REMOVE) != 0 && served != nullptr &&
        IsServedKey(*reinterpret_cast<const MSG*>(message))) {
        HandOver(*reinterpret_cast<MSG*>(message));
    }
    return CallNextHookEx(hook, code, removal, message);
}

} // namespace

void ServeKeysOf(KeyTarget* target) {
    served = target;
}

void InstallKeyboardHook() {
    if (hook != nullptr) {
        return;
    }
    hook = SetWindowsHookExA(WH_GETMESSAGE, &OnMessageTaken, nullptr, GetCurrentThreadId());
    if (hook == nullptr) {
        const DWORD error = GetLastError();
        kWebBrowserIETrace.Failure() << "Failed to install hook" << error;
    }
}

void RemoveKeyboardHook() {
    if (hook != nullptr) {
        UnhookWindowsHookEx(hook);
    }
    hook = nullptr;
    served = nullptr;
}

} // namespace kelda
