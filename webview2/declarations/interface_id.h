// WEBVIEW2_ID(interface, "text form"): the id that __uuidof yields for an interface, given before its declaration.
#pragma once

#include <guiddef.h>

#if defined(_MSC_VER) && !defined(__MINGW32__)

#define WEBVIEW2_ID(name, id) struct __declspec(uuid(id)) name;

#else

namespace webview2_detail {

constexpr unsigned int HexDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return static_cast<unsigned int>(digit - '0');
    }
    return static_cast<unsigned int>((digit | 0x20) - 'a' + 10);
}

constexpr unsigned long HexNumber(const char* digits, int count) {
    unsigned long number = 0;
    for (int i = 0; i < count; ++i) {
        number = number * 16 + HexDigit(digits[i]);
    }
    return number;
}

/// From the text form without braces: 8-4-4-4-12 hexadecimal digits.
constexpr GUID IdFromText(const char (&text)[37]) {
    GUID id{};
    id.Data1 = HexNumber(text, 8);
    id.Data2 = static_cast<unsigned short>(HexNumber(text + 9, 4));
    id.Data3 = static_cast<unsigned short>(HexNumber(text + 14, 4));
    for (int i = 0; i < 8; ++i) {
        const int digits = i < 2 ? 19 + 2 * i : 20 + 2 * i;
        id.Data4[i] = static_cast<unsigned char>(HexNumber(text + digits, 2));
    }
    return id;
}

} // namespace webview2_detail

// __uuidof of this compiler looks into a specialization of its own template.
#define WEBVIEW2_ID(name, id)                                                                                \
    struct name;                                                                                             \
    template <>                                                                                              \
    struct __mingw_uuidof_s<name> {                                                                          \
        static constexpr IID __uuid_inst = webview2_detail::IdFromText(id);                                  \
    };                                                                                                       \
    template <>                                                                                              \
    constexpr const GUID& __mingw_uuidof<name>() {                                                           \
        return __mingw_uuidof_s<name>::__uuid_inst;                                                          \
    }                                                                                                        \
    template <>                                                                                              \
    constexpr const GUID& __mingw_uuidof<name*>() {                                                          \
        return __mingw_uuidof_s<name>::__uuid_inst;                                                          \
    }

#endif
