// Mouse buttons, keys and characters, one command each.
#include "testbed/chromium/view_input.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <windowsx.h>

#include "testbed/chromium/text.h"

namespace testbed::chromium {
namespace {

// The protocol's bits.
constexpr int kAlt = 1;
constexpr int kControl = 2;
constexpr int kShift = 8;
constexpr int kLeftButton = 1;
constexpr int kRightButton = 2;
constexpr int kMiddleButton = 4;

constexpr UINT kRepeated = 1U << 30U;

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

int Modifiers() {
    return (IsDown(VK_MENU) ? kAlt : 0) | (IsDown(VK_CONTROL) ? kControl : 0) |
           (IsDown(VK_SHIFT) ? kShift : 0);
}

struct MouseMessage {
    UINT message;
    const char* type;
    const char* button;
    int clicks;
};

constexpr std::array kMouseMessages = {
    MouseMessage{WM_MOUSEMOVE, "mouseMoved", "none", 0},
    MouseMessage{WM_LBUTTONDOWN, "mousePressed", "left", 1},
    MouseMessage{WM_LBUTTONDBLCLK, "mousePressed", "left", 2},
    MouseMessage{WM_LBUTTONUP, "mouseReleased", "left", 1},
    MouseMessage{WM_RBUTTONDOWN, "mousePressed", "right", 1},
    MouseMessage{WM_RBUTTONDBLCLK, "mousePressed", "right", 2},
    MouseMessage{WM_RBUTTONUP, "mouseReleased", "right", 1},
    MouseMessage{WM_MBUTTONDOWN, "mousePressed", "middle", 1},
    MouseMessage{WM_MBUTTONDBLCLK, "mousePressed", "middle", 2},
    MouseMessage{WM_MBUTTONUP, "mouseReleased", "middle", 1},
    MouseMessage{WM_MOUSEWHEEL, "mouseWheel", "none", 0},
    MouseMessage{WM_MOUSEHWHEEL, "mouseWheel", "none", 0},
};

int Buttons(WPARAM wParam) {
    return ((wParam & MK_LBUTTON) != 0 ? kLeftButton : 0) | ((wParam & MK_RBUTTON) != 0 ? kRightButton : 0) |
           ((wParam & MK_MBUTTON) != 0 ? kMiddleButton : 0);
}

struct NamedKey {
    WPARAM key;
    std::string_view name;
};

/// Keys that mean something without a character; Chromium edits and moves the focus by them.
constexpr std::array kNamedKeys = {
    NamedKey{VK_BACK, "Backspace"}, NamedKey{VK_TAB, "Tab"},          NamedKey{VK_RETURN, "Enter"},
    NamedKey{VK_SHIFT, "Shift"},    NamedKey{VK_CONTROL, "Control"},  NamedKey{VK_MENU, "Alt"},
    NamedKey{VK_ESCAPE, "Escape"},  NamedKey{VK_PRIOR, "PageUp"},     NamedKey{VK_NEXT, "PageDown"},
    NamedKey{VK_END, "End"},        NamedKey{VK_HOME, "Home"},        NamedKey{VK_LEFT, "ArrowLeft"},
    NamedKey{VK_UP, "ArrowUp"},     NamedKey{VK_RIGHT, "ArrowRight"}, NamedKey{VK_DOWN, "ArrowDown"},
    NamedKey{VK_INSERT, "Insert"},  NamedKey{VK_DELETE, "Delete"},
};

/// As scripts see it; of printable keys what stands on them.
std::string KeyName(WPARAM key) {
    const auto named = std::find_if(kNamedKeys.begin(), kNamedKeys.end(),
                                    [&](const NamedKey& entry) { return entry.key == key; });
    if (named != kNamedKeys.end()) {
        return std::string(named->name);
    }
    if (key >= VK_F1 && key <= VK_F24) {
        return "F" + std::to_string(key - VK_F1 + 1);
    }
    auto character = static_cast<wchar_t>(MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_CHAR));
    if (character >= L'A' && character <= L'Z' && !IsDown(VK_SHIFT)) {
        character = static_cast<wchar_t>(character - L'A' + L'a');
    }
    return character == 0 ? "Unidentified" : ToUtf8(std::wstring_view(&character, 1));
}

} // namespace

std::optional<Json> MouseInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto found = std::find_if(kMouseMessages.begin(), kMouseMessages.end(),
                                    [&](const MouseMessage& entry) { return entry.message == message; });
    if (found == kMouseMessages.end()) {
        return std::nullopt;
    }
    POINT point = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    Json params = {{"type", found->type},
                   {"button", found->button},
                   {"buttons", Buttons(wParam)},
                   {"clickCount", found->clicks},
                   {"modifiers", Modifiers()}};
    if (message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL) {
        ScreenToClient(window, &point);
        const int turned = GET_WHEEL_DELTA_WPARAM(wParam);
        params["deltaX"] = message == WM_MOUSEHWHEEL ? turned : 0;
        params["deltaY"] = message == WM_MOUSEWHEEL ? -turned : 0;
    }
    params["x"] = point.x;
    params["y"] = point.y;
    return params;
}

std::optional<Json> KeyInput::Translate(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CHAR) {
        return Character(static_cast<wchar_t>(wParam));
    }
    const bool down = message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
    if (!down && message != WM_KEYUP && message != WM_SYSKEYUP) {
        return std::nullopt;
    }
    return Json{{"type", down ? "rawKeyDown" : "keyUp"},
                {"windowsVirtualKeyCode", wParam},
                {"key", KeyName(wParam)},
                {"autoRepeat", down && (static_cast<UINT>(lParam) & kRepeated) != 0},
                {"modifiers", Modifiers()}};
}

std::optional<Json> KeyInput::Character(wchar_t unit) {
    if (IS_HIGH_SURROGATE(unit)) {
        highSurrogate_ = unit;
        return std::nullopt;
    }
    const wchar_t high = std::exchange(highSurrogate_, L'\0');
    const std::wstring text =
        IS_LOW_SURROGATE(unit) && high != 0 ? std::wstring{high, unit} : std::wstring{unit};
    // Of control characters only that of Enter is a text; what the others do has been done by the key.
    if (unit < L' ' && unit != L'\r') {
        return std::nullopt;
    }
    return Json{{"type", "char"}, {"text", ToUtf8(text)}, {"modifiers", Modifiers()}};
}

} // namespace testbed::chromium
